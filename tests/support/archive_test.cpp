#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "support/archive_fixture.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class WritingTest : public ArchiveTest {
  protected:
    WritingTest() {
        for (const char* const name : {"in/a.txt", "in/b.TXT", "in/c.dwg", "in/noext",
                                       "in/sub/a.txt", "in/sub/deep/d.txt", "in/sub/deep/e.dwg"})
            write(name, std::string("content of ") + name);
        fs::create_directory(folder_ / "in/empty");
    }
};

TEST_F(WritingTest, PatternsAndWhereTheirFilesAreStored) {
    const struct {
        const char* pattern;
        bool recurse;
        Names stored;
    } cases[] = {
        {"in/a.txt", false, {"a.txt"}},
        {"in\\A.TXT", false, {"a.txt"}},
        {"IN/*.txt", false, {"a.txt", "b.TXT"}},
        {"in/?.*", false, {"a.txt", "b.TXT", "c.dwg"}},
        {"in/*.*", false, {"a.txt", "b.TXT", "c.dwg", "noext"}},
        {"in/*.", false, {"noext"}},
        {"in/*.txt", true, {"a.txt", "b.TXT", "sub/", "sub/a.txt", "sub/deep/", "sub/deep/d.txt"}},
        {"in/e.dwg", true, {"sub/", "sub/deep/", "sub/deep/e.dwg"}},
        {"in/none*", false, {}},
        {"in/sub", false, {}},
        {"in/s*", false, {}},
        {"in/", false, {}},
        {"none/*", false, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        Archive archive;
        ASSERT_TRUE(archive.NewArchive(path("x.zip")));
        EXPECT_EQ(archive.AppendFiles(path(c.pattern), c.recurse), !c.stored.empty());
        if (c.stored.empty()) {
            EXPECT_THAT(reason(archive), HasSubstr("no file matches"));
            continue;
        }
        ASSERT_TRUE(archive.WriteAndClose()) << reason(archive);
        EXPECT_EQ(contents("x.zip"), c.stored);
    }
}

TEST_F(WritingTest, OneFileOrFolderIsStoredAsAskedFor) {
    const std::string root = folder_.string().substr(1) + "/";  // without the leading "/"
    const struct {
        const char* path;
        bool discards, savesPath;
        std::string prefix;
        Names stored;
    } cases[] = {
        {"in/a.txt", false, false, "", {"a.txt"}},
        {"in/a.txt", false, true, root, {"in/a.txt"}},
        {"in/a.txt", true, true, "", {"a.txt"}},
        {"in/sub",
         false,
         false,
         "",
         {"sub/", "sub/a.txt", "sub/deep/", "sub/deep/d.txt", "sub/deep/e.dwg"}},
        {"in/sub/",
         false,
         true,
         root,
         {"in/sub/", "in/sub/a.txt", "in/sub/deep/", "in/sub/deep/d.txt", "in/sub/deep/e.dwg"}},
        {"in/sub", true, true, "", {"a.txt", "d.txt", "e.dwg"}},
        {"in/empty", false, false, "", {"empty/"}},
        {"in/empty", true, false, "", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.path << c.discards << c.savesPath);
        Archive archive;
        ASSERT_TRUE(archive.NewArchive(path("x.zip")));
        archive.SetDiscardPaths(c.discards);
        ASSERT_TRUE(archive.AppendFileOrFolder(path(c.path), c.savesPath)) << reason(archive);
        ASSERT_TRUE(archive.WriteAndClose()) << reason(archive);
        Names stored;
        for (const std::string& name : contents("x.zip")) {
            if (name.starts_with(c.prefix + "in/") || c.prefix.empty())
                stored.push_back(name.substr(c.prefix.size()));
        }
        EXPECT_THAT(stored, testing::IsSupersetOf(c.stored));
        EXPECT_LE(stored.size(), c.stored.size() + 1);  // the folder in front of the first
    }
}

TEST_F(WritingTest, NamesThatAreTakenGetNumbers) {
    Archive archive;
    ASSERT_TRUE(archive.NewArchive(path("x.zip")));
    archive.SetDiscardPaths(true);
    write("in/sub/A.TXT", "");
    for (const char* const name :
         {"in/a.txt", "in/sub/a.txt", "in/sub/A.TXT", "in/noext", "in/noext"})
        EXPECT_TRUE(archive.AppendFileOrFolder(path(name), false)) << name;
    ASSERT_TRUE(archive.WriteAndClose());
    EXPECT_THAT(contents("x.zip"),
                ElementsAre("A (3).TXT", "a (2).txt", "a.txt", "noext", "noext (2)"));
}

TEST_F(WritingTest, ContentTimesAndInternationalNamesComeBack) {
    const std::string name = "Größe \u4e2d\u6587 42.dat";
    std::string content;
    for (uint32_t i = 0; i < 300'000; ++i)
        content += static_cast<char>(i * 7919 >> 3);
    write("in/" + name, content);
    const std::timespec times[2] = {{0, 0}, {1'234'567'891, 0}};  // an odd second
    ASSERT_EQ(utimensat(AT_FDCWD, (folder_ / "in" / name).c_str(), times, 0), 0);
    Archive archive;
    ASSERT_TRUE(archive.NewArchive(path("x.zip")) && archive.AppendFiles(path("in/*.dat"), false) &&
                archive.WriteAndClose());
    ASSERT_TRUE(archive.OpenArchive(path("X.ZIP")) && archive.ExtractAll(path("out/of/here")));
    EXPECT_EQ(read("out/of/here/" + name), content);
    struct stat info;
    ASSERT_EQ(stat((folder_ / "out/of/here" / name).c_str(), &info), 0);
    EXPECT_EQ(info.st_mtim.tv_sec, 1'234'567'891);
}

TEST_F(WritingTest, AnArchiveIsThereOnlyWhenItIsWhole) {
    write("x.zip", "before");
    const Names before = below();
    Archive archive;
    EXPECT_FALSE(archive.NewArchive(path("none/x.zip")));
    EXPECT_FALSE(archive.NewArchive(path("in")));
    EXPECT_FALSE(archive.NewArchive(L""));
    EXPECT_FALSE(archive.AppendFiles(path("in/*"), false)) << "nothing has been begun";
    EXPECT_FALSE(archive.WriteAndClose());
    EXPECT_FALSE(archive.ExtractAll(path("out")));

    ASSERT_TRUE(archive.NewArchive(path("x.zip")));
    EXPECT_TRUE(archive.AppendFiles(path("in/*"), true));
    EXPECT_EQ(read("x.zip"), "before");
    archive.Close();
    EXPECT_EQ(below(), before);

    write("in/gone");
    ASSERT_TRUE(archive.NewArchive(path("x.zip")) && archive.AppendFiles(path("in/gone"), false));
    fs::remove(folder_ / "in/gone");
    EXPECT_FALSE(archive.WriteAndClose());
    EXPECT_THAT(reason(archive), HasSubstr("No such file"));
    EXPECT_EQ(below(), before);
    EXPECT_EQ(read("x.zip"), "before");
}

TEST_F(WritingTest, AnArchiveDoesNotContainItself) {
    for (int i = 0; i < 2; ++i) {
        Archive archive;
        ASSERT_TRUE(archive.NewArchive(path("in/x.zip")));
        ASSERT_TRUE(archive.AppendFiles(path("in/*"), false)) << reason(archive);
        EXPECT_FALSE(archive.AppendFiles(path("in/x.zip"), false));
        ASSERT_TRUE(archive.WriteAndClose());
        EXPECT_THAT(contents("in/x.zip"), ElementsAre("a.txt", "b.TXT", "c.dwg", "noext"));
    }
}

TEST_F(WritingTest, LinksAndWhatIsNoFile) {
    fs::create_directory_symlink(folder_ / "in", folder_ / "in/sub/loop");
    fs::create_symlink(folder_ / "in/c.dwg", folder_ / "in/sub/linked.dwg");
    fs::create_symlink(folder_ / "nowhere", folder_ / "in/sub/broken.dwg");
    ASSERT_EQ(mkfifo((folder_ / "in/sub/pipe.dwg").c_str(), 0600), 0);
    Archive archive;
    ASSERT_TRUE(archive.NewArchive(path("x.zip")) && archive.AppendFiles(path("in/*.dwg"), true) &&
                archive.WriteAndClose());
    EXPECT_THAT(contents("x.zip"),
                ElementsAre("c.dwg", "sub/", "sub/deep/", "sub/deep/e.dwg", "sub/linked.dwg"));
    ASSERT_TRUE(archive.NewArchive(path("x.zip")));
    EXPECT_FALSE(archive.AppendFiles(path("in/sub/pipe.dwg"), false));
    EXPECT_FALSE(archive.AppendFileOrFolder(path("in/sub/pipe.dwg"), false));
    EXPECT_FALSE(archive.AppendFileOrFolder(path("in/sub/broken.dwg"), false));
}

TEST_F(WritingTest, AnEmptyArchiveIsOne) {
    Archive archive;
    ASSERT_TRUE(archive.NewArchive(path("x.zip")) && archive.WriteAndClose());
    EXPECT_EQ(read("x.zip").size(), 22u);
    EXPECT_THAT(contents("x.zip"), IsEmpty());
}

TEST_F(WritingTest, TheLastErrorIsTold) {
    Archive archive;
    EXPECT_FALSE(archive.OpenArchive(path("in/<a>.zip")));
    ASSERT_TRUE(archive.SaveLastError(path("error.xml")));
    EXPECT_EQ(read("error.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<failure>\n"
              "  <operation>OpenArchive</operation>\n  <reason>\"" +
                  folder_.string() +
                  "/in/&lt;a&gt;.zip\": No such file or directory</reason>\n"
                  "</failure>\n");
    EXPECT_FALSE(archive.SaveLastError(path("none/error.xml")));
}

// No file may grow beyond a limit, as on a full disk.
class WithFileLimit {
  public:
    explicit WithFileLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~WithFileLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_;
    void (*handler_)(int);
};

TEST_F(WritingTest, AFullDiskLeavesNothingBehind) {
    std::string noise;
    for (uint32_t i = 1, x = 1; i <= 100'000; ++i)
        noise += static_cast<char>((x = x * 1664525 + 1013904223) >> 24);
    write("in/noise.dat", noise);
    Archive archive;
    ASSERT_TRUE(archive.NewArchive(path("x.zip")) && archive.AppendFiles(path("in/*"), false) &&
                archive.WriteAndClose());
    const Names before = below();
    const WithFileLimit limit(50'000);

    ASSERT_TRUE(archive.NewArchive(path("y.zip")) && archive.AppendFiles(path("in/*"), false));
    EXPECT_FALSE(archive.WriteAndClose());
    EXPECT_THAT(reason(archive), HasSubstr("File too large"));
    EXPECT_EQ(below(), before);

    ASSERT_TRUE(archive.OpenArchive(path("x.zip")));
    EXPECT_FALSE(archive.ExtractAll(path("out")));
    EXPECT_THAT(reason(archive), HasSubstr("File too large"));
    EXPECT_THAT(below("out"), ElementsAre("a.txt", "b.TXT", "c.dwg", "noext"));
}

}  // namespace
}  // namespace sg
