#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/archive_fixture.h"
#include "support/zip/zip_builder.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

class ReadingTest : public ArchiveTest {
  protected:
    // Unpacks the bytes of an archive into "out" and answers why that failed, or "".
    std::string extract(const std::string& bytes) {
        write("x.zip", bytes);
        Archive archive;
        if (archive.OpenArchive(path("x.zip")) && archive.ExtractAll(path("out"))) return "";
        return reason(archive);
    }
    std::string extract(const RawEntry& entry) { return extract(ZipBuilder().add(entry).bytes()); }
    std::string extractNamed(const std::string& name) {
        return extract(ZipBuilder().add("before").add(name).bytes());
    }
    void expectRefused(const std::string& answer, const std::string& reason) {
        EXPECT_THAT(answer, HasSubstr(reason));
        EXPECT_THAT(below(), ElementsAre("x.zip"));
    }
};

TEST_F(ReadingTest, NamesThatLeadOutRefuseTheWholeArchive) {
    const struct {
        std::string name;
        const char* reason;
    } cases[] = {
        {"../x", "leads out"},
        {"a/../../x", "leads out"},
        {"a/..", "leads out"},
        {"..\\x", "leads out"},
        {"a\\..\\..\\x", "leads out"},
        {"/tmp/x", "absolute"},
        {"\\x", "absolute"},
        {"\\\\server\\share\\x", "absolute"},
        {"C:/x", "drive letter"},
        {"c:x", "drive letter"},
        {"a\nb", "control characters"},
        {"a\x1b[2J", "control characters"},
        {"", "no name"},
        {".", "no name"},
        {std::string("a\0/../b", 7), "zero byte"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        expectRefused(extractNamed(c.name), c.reason);
    }
}

TEST_F(ReadingTest, OtherNamesStayBelowTheFolder) {
    const struct {
        std::string name, file;
    } cases[] = {
        {"a\\b.txt", "a/b.txt"}, {"./a//b.txt", "a/b.txt"},  {"...", "..."},
        {"a..b", "a..b"},        {"12:30.txt", "12:30.txt"}, {"..a/b..", "..a/b.."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(extractNamed(c.name), "");
        EXPECT_EQ(read("out/" + c.file), "data");
    }
    EXPECT_EQ(extract(ZipBuilder().add("./", "").add("sub\\", "").bytes()), "");
    EXPECT_TRUE(exists("out/sub"));
}

TEST_F(ReadingTest, NamesAreReadInTheEncodingOfTheirMaker) {
    const struct {
        const char* bytes;
        uint16_t flags;
        uint8_t system;
        const char* name;
    } cases[] = {
        {"Gr\xc3\xb6\xc3\x9f"
         "e",
         0x800, 0, "Größe"},  // declared as UTF-8
        {"Gr\xc3\xb6\xc3\x9f"
         "e",
         0, 3, "Größe"},  // UTF-8 all the same
        {"Gr\x94\xe1"
         "e",
         0, 0, "Größe"},  // 437
        {"Gr\x94\xe1"
         "e",
         0, 10, "Größe"},
        {"Gr\xf6\xdf"
         "e",
         0, 3, "Größe"},  // 1252
    };
    for (const auto& c : cases) {
        RawEntry entry{c.bytes, "data"};
        entry.flags = c.flags;
        entry.system = c.system;
        EXPECT_EQ(extract(entry), "") << c.bytes;
        EXPECT_THAT(below("out"), ElementsAre(c.name)) << c.bytes;
        fs::remove_all(folder_ / "out");
    }
}

TEST_F(ReadingTest, DeclarationsThatCannotBe) {
    const auto entry = [](auto&& change) {
        RawEntry made{"a", "data"};
        change(made);
        return made;
    };
    const struct {
        RawEntry entry;
        const char* reason;
    } cases[] = {
        {entry([](RawEntry& e) { e.attributes = uint32_t(S_IFLNK | 0777) << 16; }), "link"},
        {entry([](RawEntry& e) { e.attributes = uint32_t(S_IFIFO | 0666) << 16; }), "device"},
        {entry([](RawEntry& e) { e.flags = 1; }), "password"},
        {entry([](RawEntry& e) { e.method = 14; }), "method"},
        {entry([](RawEntry& e) { e.size = 5; }), "declared size"},
        {entry([](RawEntry& e) { e.size = 0x7fffffff, e.method = 8; }), "declared size"},
        {entry([](RawEntry& e) { e.packedSize = 1000, e.size = 1000; }), "does not fit"},
        {entry([](RawEntry& e) { e.headerOffset = 1; }), "header is damaged"},
        {entry([](RawEntry& e) { e.headerOffset = 0xFFFFFF; }), "header is damaged"},
        {entry([](RawEntry& e) { e.extra = std::string("UT\xff\xff", 4); }),
         "directory is damaged"},
        {entry([](RawEntry& e) {
             for (int i = 0; i < 33; ++i)
                 e.extra += ZipBuilder::number(0x7000 + i, 2) + std::string(2, '\0');
         }),
         "directory is damaged"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reason);
        expectRefused(extract(c.entry), c.reason);
    }
}

TEST_F(ReadingTest, DataThatIsNotWhatWasDeclaredLeavesNoFile) {
    const std::string packed = ZipBuilder::storedBlock("0123456789");
    const auto entry = [&](uint32_t size, uint32_t crc) {
        RawEntry made{"b", packed};
        made.method = 8;
        made.size = size;
        made.crc = crc;
        return ZipBuilder().add("a").add(made).bytes();
    };
    const uint32_t crc = ZipBuilder::crc32("0123456789");
    EXPECT_EQ(extract(entry(10, crc)), "");
    EXPECT_EQ(read("out/b"), "0123456789");
    for (const auto& bytes : {entry(9, crc), entry(11, crc), entry(0, crc), entry(10, crc + 1)}) {
        fs::remove_all(folder_ / "out");
        write("out/b", "before");
        EXPECT_NE(extract(bytes), "");
        EXPECT_THAT(below("out"), ElementsAre("a", "b"));
        EXPECT_EQ(read("out/b"), "before");
    }
}

TEST_F(ReadingTest, EntriesThatShareBytes) {
    RawEntry shared{"b", "data"};
    shared.headerOffset = 0;
    expectRefused(extract(ZipBuilder().add("a").add(shared).bytes()), "share bytes");
    // One entry's data is the other entry.
    RawEntry outer{"outer", ""};
    outer.packedSize = outer.size = 20;
    expectRefused(extract(ZipBuilder().add(outer).add("inner", "data").bytes()), "share bytes");
}

TEST_F(ReadingTest, MoreThanIsFreeIsNotBegun) {
    const uint64_t size = fs::space(folder_).available + 1'000'000;
    const uint64_t packedSize = size / 1032 + 1;
    RawEntry bomb("bomb", "");
    bomb.method = 8;
    bomb.size = bomb.packedSize = 0xFFFFFFFF;  // both stand in an extra field
    bomb.extra = ZipBuilder::number(1, 2) + ZipBuilder::number(16, 2) +
                 ZipBuilder::number(size, 8) + ZipBuilder::number(packedSize, 8);
    const ZipBuilder builder = ZipBuilder().add(bomb);
    const size_t directory = builder.entries().size() + packedSize;
    {
        std::ofstream file(folder_ / "x.zip");  // the packed bytes are a hole in it
        file << builder.entries();
        file.seekp(static_cast<std::streamoff>(directory));
        file << builder.directory(directory);
    }
    Archive archive;
    ASSERT_TRUE(archive.OpenArchive(path("x.zip"))) << reason(archive);
    EXPECT_FALSE(archive.ExtractAll(path("out")));
    expectRefused(reason(archive), "free space");
}

TEST_F(ReadingTest, SeveralDirectories) {
    const std::string one = ZipBuilder().add("a").bytes();
    EXPECT_EQ(extract(ZipBuilder().add("inner.zip", one).bytes()), "") << "a stored archive";
    // Two end records that lead to the same directory; the later one has the other as its comment.
    std::string two = ZipBuilder().add("a").bytes();
    const std::string end = two.substr(two.size() - 22);
    two += end;
    fs::remove_all(folder_ / "out");
    expectRefused(extract(two), "more than one directory");
}

TEST_F(ReadingTest, WhatIsNoArchive) {
    const std::string sound = ZipBuilder().add("a").add("b").bytes();
    for (size_t length = 0; length < sound.size(); ++length) {
        EXPECT_NE(extract(sound.substr(0, length)), "") << length;
        EXPECT_NE(extract(sound.substr(sound.size() - length)), "") << length;
    }
    expectRefused(extract(std::string(100'000, 'P')), "not a ZIP file");
    expectRefused(extract(std::string(22, '\0')), "not a ZIP file");
    Archive archive;
    EXPECT_FALSE(archive.OpenArchive(path()));
    EXPECT_FALSE(archive.OpenArchive(L"/dev/zero"));
    EXPECT_FALSE(archive.OpenArchive(path("none.zip")));
    EXPECT_EQ(extract(sound + std::string(100, 'x')), "") << "something hangs on behind it";
}

TEST_F(ReadingTest, LinksInTheTargetAreNotFollowed) {
    fs::create_directories(folder_ / "out");
    write("outside/file", "outside");
    fs::create_directory_symlink(folder_ / "outside", folder_ / "out/folder");
    fs::create_symlink(folder_ / "outside/file", folder_ / "out/linked");
    EXPECT_THAT(extract(ZipBuilder().add("folder/x").bytes()), HasSubstr("a link"));
    EXPECT_THAT(extract(ZipBuilder().add("Folder/x").bytes()), HasSubstr("a link"));
    EXPECT_EQ(extract(ZipBuilder().add("linked").bytes()), "");
    EXPECT_FALSE(fs::is_symlink(folder_ / "out/linked"));
    EXPECT_EQ(read("outside/file"), "outside");
    EXPECT_THAT(below("outside"), ElementsAre("file"));
}

TEST_F(ReadingTest, WhatExistsIsReplacedAlsoInAnotherCase) {
    write("out/Plans/A.txt", "before");
    EXPECT_EQ(
        extract(
            ZipBuilder().add("plans/a.TXT", "new").add("plans/B", "b").add("PLANS/b", "c").bytes()),
        "");
    EXPECT_THAT(below("out"), ElementsAre("Plans/", "Plans/A.txt", "Plans/B"));
    EXPECT_EQ(read("out/Plans/A.txt"), "new");
    EXPECT_EQ(read("out/Plans/B"), "c");
}

TEST_F(ReadingTest, FilesAndFoldersInEachOthersWay) {
    EXPECT_THAT(extract(ZipBuilder().add("a").add("a/b").bytes()), HasSubstr("in the way"));
    EXPECT_NE(extract(ZipBuilder().add("b/c").add("b").bytes()), "");
    std::string deep;
    for (int i = 0; i < 5000; ++i)
        deep += "d/";
    EXPECT_NE(extract(ZipBuilder().add(deep + "x").bytes()), "");
    write("file");
    write("x.zip", ZipBuilder().add("a").bytes());
    Archive archive;
    ASSERT_TRUE(archive.OpenArchive(path("x.zip")));
    EXPECT_FALSE(archive.ExtractAll(path("file")));
    EXPECT_FALSE(archive.ExtractAll(path("file/below")));
    EXPECT_FALSE(archive.ExtractAll(L""));
}

}  // namespace
}  // namespace sg
