#include <QPrinter>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "grid/grid_fixture.h"
#include "grid/print_layout.h"

namespace sg::grid {
namespace {

class PrintedGrid : public TestGrid {
  public:
    std::vector<std::string> parts;
    PrintLayout last;

  protected:
    void OnBeginPrinting(PrintLayout& layout) override {
        TestGrid::OnBeginPrinting(layout);
        last = layout;
    }
    void PrintHeaderPart(QPainter& painter, const QRect& rect, const std::wstring& text,
                         Qt::Alignment alignment) override {
        parts.push_back(toUtf8(text));
        TestGrid::PrintHeaderPart(painter, rect, text, alignment);
    }
};

class PrintTest : public testing::Test {
  protected:
    void SetUp() override {
        file_ = std::filesystem::temp_directory_path() /
                ("sg_grid" + std::to_string(getpid()) + ".pdf");
        grid.SetColumnCount(8);
        grid.SetRowCount(101);
        grid.SetFixedRowCount(1);
        grid.SetFixedColumnCount(1);
        grid.setWindowTitle(QStringLiteral("Parts"));
        for (int row = 0; row < 101; ++row) {
            for (int column = 0; column < 8; ++column)
                grid.SetItemText(row, column,
                                 std::to_wstring(row) + L"," + std::to_wstring(column));
        }
    }
    void TearDown() override { std::filesystem::remove(file_); }

    bool Print() {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setOutputFileName(QString::fromStdString(file_.string()));
        return grid.PrintTo(printer);
    }

    int PagesInFile() const {
        std::ostringstream bytes;
        bytes << std::ifstream(file_, std::ios::binary).rdbuf();
        int count = 0;
        const std::string mark = "/Type /Page\n", content = bytes.str();
        for (size_t at = content.find(mark); at != std::string::npos;
             at = content.find(mark, at + 1))
            ++count;
        return count;
    }

    PrintedGrid grid;
    std::filesystem::path file_;
};

TEST_F(PrintTest, EveryRowAndColumnIsOnAPage) {
    grid.SetRowHeight(50, 0);
    grid.SetColumnWidth(3, 0);
    ASSERT_TRUE(Print());
    const PrintLayout& layout = grid.last;
    std::vector<int> rows, columns;
    for (const auto& page : layout.rowPages)
        rows.insert(rows.end(), page.begin(), page.end());
    for (const auto& page : layout.columnPages)
        columns.insert(columns.end(), page.begin(), page.end());
    EXPECT_EQ(rows.size(), 99u);
    EXPECT_EQ(columns, (std::vector<int>{1, 2, 4, 5, 6, 7}));
    EXPECT_GT(layout.rowPages.size(), 1u);
    EXPECT_EQ(PagesInFile(), layout.PageCount());
    EXPECT_EQ(int(grid.parts.size()), 2 * layout.PageCount());
    EXPECT_EQ(grid.parts[0], "Parts");
    EXPECT_EQ(grid.parts[1], "Page 1 of " + std::to_string(layout.PageCount()));
    EXPECT_EQ(grid.GetPrintFont(), nullptr);
    // What is on a page lies within it.
    for (const auto& page : layout.rowPages) {
        int height = grid.GetRowHeight(0);
        for (const int row : page)
            height += grid.GetRowHeight(row);
        EXPECT_LE(height, layout.cells.height());
    }
}

TEST_F(PrintTest, ColumnsWiderThanThePageHaveOneOfTheirOwn) {
    grid.SetColumnWidth(2, 100'000);
    ASSERT_TRUE(Print());
    EXPECT_EQ(grid.last.columnPages.size(), 3u);
    EXPECT_EQ(grid.last.columnPages[1], std::vector<int>{2});
}

TEST_F(PrintTest, AnEmptyGridIsOnePage) {
    grid.DeleteAllItems();
    ASSERT_TRUE(Print());
    EXPECT_EQ(PagesInFile(), 1);
}

TEST_F(PrintTest, WhatCannotBeWrittenIsTold) {
    file_ = "/nonexistent/folder/out.pdf";
    EXPECT_FALSE(Print());
}

}  // namespace
}  // namespace sg::grid
