#include "host/system/files.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <optional>

#include "host/system/folders.h"
#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using testing::HasSubstr;

using FilesTest = FolderTest;

TEST_F(FilesTest, CopyTellsHowMuchAndNeverReplaces) {
    write("source.txt", std::string(100000, 'x'));
    write("there.txt", "old");
    EXPECT_EQ(copyFile(path("SOURCE.txt"), path("copy.txt"), false).bytes, 100000);
    EXPECT_EQ(read("copy.txt").size(), 100000u);
    EXPECT_THAT(toUtf8(copyFile(path("source.txt"), path("there.txt"), false).error),
                HasSubstr("File exists"));
    EXPECT_EQ(copyFile(path("there.txt"), path("copy.txt"), true).bytes, 3);
    EXPECT_EQ(read("copy.txt").size(), 100003u);
    EXPECT_THAT(toUtf8(copyFile(path("there.txt"), path("THERE.TXT"), true).error),
                HasSubstr("same file"));
    EXPECT_THAT(toUtf8(copyFile(path("none"), path("x"), false).error), HasSubstr("cannot read"));
    EXPECT_THAT(toUtf8(copyFile(path(), path("x"), false).error), HasSubstr("folder"));
    EXPECT_FALSE(exists("x"));
    EXPECT_EQ(read("there.txt"), "old");
}

TEST_F(FilesTest, ACopyOverAFileIsWholeOrNotThere) {
    write("source.txt", std::string(100000, 'x'));
    write("there.txt", "old");
    chmod((folder_ / "source.txt").c_str(), 0640);
    EXPECT_EQ(copyOverFile(path("source.txt"), path("THERE.txt")).bytes, 100000);
    EXPECT_EQ(read("there.txt").size(), 100000u);
    EXPECT_EQ(fileTime(path("there.txt"))->tv_nsec, fileTime(path("source.txt"))->tv_nsec);
    struct stat info;
    ASSERT_EQ(stat((folder_ / "there.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    EXPECT_THAT(toUtf8(copyOverFile(path("there.txt"), path("THERE.TXT")).error),
                HasSubstr("same file"));
    EXPECT_FALSE(copyOverFile(path("none"), path("x")));
    EXPECT_FALSE(copyOverFile(path("source.txt"), path()));
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(toUtf8(copyOverFile(path("pipe"), path("x")).error), HasSubstr("pipe"));
    chmod((folder_ / "there.txt").c_str(), 0444);
    EXPECT_TRUE(isReadOnly(path("there.txt")));
    EXPECT_FALSE(isReadOnly(path("source.txt")) || isReadOnly(path("none")));
    EXPECT_FALSE(copyOverFile(path("source.txt"), path("there.txt")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 3)
        << "nothing unfinished is left";
}

TEST_F(FilesTest, RenameAndDelete) {
    write("a.txt", "a");
    write("b.txt", "b");
    EXPECT_FALSE(renameFile(path("a.txt"), path("B.TXT")));
    EXPECT_TRUE(renameFile(path("A.txt"), path("A.TXT"))) << "only the case changes";
    EXPECT_EQ(read("A.TXT"), "a");
    EXPECT_TRUE(renameFile(path("a.txt"), path("c.txt")));
    EXPECT_FALSE(renameFile(path("a.txt"), path("d.txt")));
    EXPECT_TRUE(deleteFile(path("C.txt")));
    EXPECT_FALSE(deleteFile(path("c.txt")));
    EXPECT_FALSE(deleteFile(path()));
    EXPECT_TRUE(makeFolder(path("new")));
    EXPECT_FALSE(makeFolder(path("NEW")));
    EXPECT_FALSE(makeFolder(path("no/new")));
    EXPECT_TRUE(isFolder(path("new")) && !isFile(path("new")) && isFile(path("B.txt")));
}

TEST_F(FilesTest, SizeAndTime) {
    write("five", "12345");
    EXPECT_EQ(fileSize(path("FIVE")), 5);
    EXPECT_EQ(fileSize(path()), 0);
    EXPECT_EQ(fileSize(path("none")), std::nullopt);
    EXPECT_TRUE(fileTime(path("five")).has_value());
    EXPECT_FALSE(fileTime(path("none")).has_value());
    EXPECT_EQ(readFile(path("none")), std::nullopt);
    EXPECT_EQ(readFile(path()), std::nullopt);
}

TEST_F(FilesTest, AtomicWriteKeepsLinksAndModesAndLeavesNothingBehind) {
    write("real", "old");
    chmod((folder_ / "real").c_str(), 0640);
    std::filesystem::create_symlink("real", folder_ / "link");
    EXPECT_TRUE(writeFileAtomically(path("link"), "new"));
    EXPECT_EQ(read("real"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link"));
    struct stat info;
    ASSERT_EQ(stat((folder_ / "real").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    EXPECT_FALSE(writeFileAtomically(path("none/x"), "new"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2);
}

TEST_F(FilesTest, TemporaryNamesAreDistinctAndCleanedUp) {
    const WithEnvironment temporary("TMPDIR", toUtf8(path()));
    write("MyApp002.del");
    {
        TemporaryFiles names;
        EXPECT_EQ(names.next(L"", L"", std::nullopt), path("$VL~~001"));
        EXPECT_EQ(names.next(L"MyApp.del", L"", std::nullopt), path("MyApp003.del"));
        EXPECT_EQ(names.next(L"MyApp", path(), L"lsp"), path("MyApp004.lsp"));
        EXPECT_EQ(names.next(path("x.dat"), L"", L""), path("x005"));
        write("$VL~~001");
    }
    EXPECT_FALSE(exists("$VL~~001"));
    EXPECT_TRUE(exists("MyApp002.del"));
}

TEST_F(FilesTest, FoldersComeFromTheEnvironment) {
    const WithEnvironment home("HOME", toUtf8(path()));
    const WithEnvironment configuration("XDG_CONFIG_HOME", toUtf8(path("conf")));
    const WithEnvironment data("XDG_DATA_HOME", "relative");
    EXPECT_EQ(knownFolder(KnownFolder::configuration), path("conf"));
    EXPECT_EQ(knownFolder(KnownFolder::data), path(".local/share"));
    EXPECT_EQ(knownFolder(KnownFolder::desktop), path("Desktop"));
    write("conf/user-dirs.dirs",
          "# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\nXDG_DOCUMENTS_DIR=\"/srv/docs\"\n");
    EXPECT_EQ(knownFolder(KnownFolder::desktop), path("Schreibtisch"));
    EXPECT_EQ(knownFolder(KnownFolder::documents), L"/srv/docs");
}

TEST_F(FilesTest, EnvironmentIgnoringCaseAndCounterparts) {
    const WithEnvironment mixed("Sg_Test_Variable", "caf\xC3\xA9");
    const WithEnvironment temporary("TMPDIR", toUtf8(path()));
    EXPECT_EQ(environmentVariable(L"SG_TEST_VARIABLE"), L"caf\u00e9");
    EXPECT_EQ(environmentVariable(L"SG_TEST_NONE"), std::nullopt);
    EXPECT_EQ(environmentVariable(L""), std::nullopt);
    EXPECT_EQ(environmentVariable(L"A=B"), std::nullopt);
    if (std::getenv("TEMP") == nullptr && std::getenv("temp") == nullptr) {
        EXPECT_EQ(environmentVariable(L"temp"), path());
    }
    EXPECT_TRUE(environmentVariable(L"COMPUTERNAME").has_value());
}

}  // namespace
}  // namespace sg
