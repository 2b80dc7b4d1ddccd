#include <filesystem>
#include <fstream>
#include <sstream>

#include "grid/grid_fixture.h"

namespace sg::grid {
namespace {

namespace fs = std::filesystem;

class FileTest : public GridTest {
  protected:
    void SetUp() override {
        GridTest::SetUp();
        folder_ = fs::temp_directory_path() / ("sg_grid" + std::to_string(getpid()));
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::wstring Path(const char* name) const { return (folder_ / name).wstring(); }

    std::wstring Write(const std::string& bytes) const {
        std::ofstream(folder_ / "in.txt", std::ios::binary) << bytes;
        return Path("in.txt");
    }

    std::string Read(const char* name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
        return bytes.str();
    }

    // All texts: fields with "|" between them, and rows with "/".
    std::string All() const {
        std::string texts;
        for (int row = 0; row < grid->GetRowCount(); ++row) {
            texts += row > 0 ? "/" : "";
            for (int column = 0; column < grid->GetColumnCount(); ++column)
                texts += (column > 0 ? "|" : "") + Text(row, column);
        }
        return texts;
    }

  private:
    fs::path folder_;
};

TEST_F(FileTest, ReadsLinesOfAnyShape) {
    const struct {
        const char* content;
        int columns;
        const char* texts;
    } files[] = {
        {"a,b\n1,2\n", 2, "a|b/1|2"},
        {"a,b\r\n1,2", 2, "a|b/1|2"},
        {"a,b\n1\n1,2,3\n\n,x\n", 2, "a|b/1|/1|2/|/|x"},
        {"a,,c\n", 3, "a||c"},
        {"a", 1, "a"},
        {"\n1,2\n3\n", 0, "/"},
        {"", 0, ""},
        {"\xEF\xBB\xBF\xC3\xA4,b\n", 2, "\xC3\xA4|b"},
        {"\xE4,\xFF\n", 2, "\xC3\xA4|\xC3\xBF"},  // no UTF-8
    };
    for (const auto& file : files) {
        EXPECT_TRUE(grid->Load(Write(file.content))) << file.content;
        EXPECT_EQ(grid->GetColumnCount(), file.columns) << file.content;
        EXPECT_EQ(All(), file.texts) << file.content;
    }
    EXPECT_TRUE(grid->errors.empty());
}

TEST_F(FileTest, TheFirstLineIsReadUpToItsLimit) {
    std::string content;
    for (int i = 0; i < 1000; ++i)
        content += "ab,";
    ASSERT_TRUE(grid->Load(Write(content + "\nx,y\n")));
    EXPECT_EQ(grid->GetColumnCount(), 1024 / 3 + 1);
    EXPECT_EQ(grid->GetRowCount(), 2);
    EXPECT_EQ(Text(1, 1), "y");
    // Further lines have none.
    const std::string wide(3'000'000, 'w');
    ASSERT_TRUE(grid->Load(Write("a\n" + wide)));
    EXPECT_EQ(grid->GetItemText(1, 0).size(), wide.size());
}

TEST_F(FileTest, BytesThatAreNoTextDoNoHarm) {
    std::string bytes;
    for (int i = 0; i < 20'000; ++i)
        bytes += char(i * 7919 >> 3);
    EXPECT_TRUE(grid->Load(Write(bytes)));
    EXPECT_GT(grid->GetRowCount(), 10);
    grid->AutoSizeColumns();
    grid->grab();
}

TEST_F(FileTest, HeadingsStayFixedAndTitlesAreKnown) {
    ASSERT_TRUE(grid->Load(Write("name;value\nx;1\n"), L';'));
    EXPECT_EQ(grid->GetFixedRowCount(), 1);
    EXPECT_EQ(grid->GetFixedColumnCount(), 1);
    EXPECT_EQ(toUtf8(grid->GetColumnText(1)), "value");
    EXPECT_EQ(grid->GetColumnFormat(1), uint32_t(37));
    EXPECT_EQ(grid->GetColumnWidth(0), grid->GetCell(0, 0)->GetCellExtent().width() + 3);
}

TEST_F(FileTest, SavesWhatItReads) {
    const std::string content = "a;b;c\n1;;3\n;;\n\xE2\x82\xAC;x,y;z\n";
    ASSERT_TRUE(grid->Load(Write(content), L';'));
    ASSERT_TRUE(grid->Save(Path("out.txt"), L';'));
    EXPECT_EQ(Read("out.txt"), content);
    grid->SetRowCount(0);
    ASSERT_TRUE(grid->Save(Path("out.txt")));
    EXPECT_TRUE(fs::exists(Path("out.txt")));
    EXPECT_EQ(Read("out.txt"), "");
}

TEST_F(FileTest, FilesThatCannotBeOpenedAreNamed) {
    const std::string before = All();
    EXPECT_FALSE(grid->Load(Path("none.txt")));
    EXPECT_FALSE(grid->Save(Path("none/none.txt")));
    ASSERT_EQ(grid->errors.size(), 2u);
    EXPECT_EQ(grid->errors[0], L"cannot open " + Path("none.txt") + L": No such file or directory");
    EXPECT_EQ(grid->errors[1],
              L"cannot open " + Path("none/none.txt") + L": No such file or directory");
    EXPECT_FALSE(grid->Load(Path("")));  // a folder
    EXPECT_EQ(grid->errors.back(), L"Unable to load grid data");
    EXPECT_EQ(All(), before);
}

}  // namespace
}  // namespace sg::grid
