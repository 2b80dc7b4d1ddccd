#include <QPainter>

#include "grid/grid_fixture.h"
#include "grid/picture_compare.h"
#include "grid/scenes.h"
#include "grid/tree_cell.h"
#include "grid/tree_column.h"

namespace sg::grid {
namespace {

TEST(Pictures, AreAsTheDocumentsShowThem) {
    for (const Scene& scene : scenes())
        comparePicture(scene.draw(), scene.name);
}

class PaintTest : public GridTest {
  protected:
    QImage Draw() {
        return grid->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    // Pixels of a cell that have the colour.
    int Count(int row, int column, const QColor& colour) {
        QRect rect;
        EXPECT_TRUE(grid->GetCellRect(row, column, rect));
        const QImage image = Draw();
        rect &= image.rect();
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x)
                count += image.pixelColor(x, y) == colour ? 1 : 0;
        }
        return count;
    }
};

TEST_F(PaintTest, SelectionFocusAndColoursShow) {
    const QColor highlight = grid->palette().color(QPalette::Highlight);
    const QColor base = grid->palette().color(QPalette::Base);
    EXPECT_EQ(Count(3, 3, highlight), 0);
    EXPECT_GT(Count(3, 3, base), 500);
    grid->SetSelectedRange({3, 3, 3, 3});
    EXPECT_GT(Count(3, 3, highlight), 500);
    grid->SetFocusCell(3, 3);
    EXPECT_GT(Count(3, 3, highlight), 300);
    EXPECT_EQ(Count(3, 3, base) > 500, false);
    const QColor own(10, 200, 30);
    grid->SetItemBkColour(4, 4, gridColour(own));
    EXPECT_GT(Count(4, 4, own), 500);
    EXPECT_EQ(Count(4, 3, own), 0);
}

TEST_F(PaintTest, LinesStandWhereTheyAreAsked) {
    const QColor line(1, 2, 3);
    grid->SetGridLineColour(gridColour(line));
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(3, 3, rect));
    for (const int lines : {0, 1, 2, 3}) {
        grid->SetGridLines(lines);
        const QImage image = Draw();
        EXPECT_EQ(image.pixelColor(rect.right() + 1, rect.center().y()) == line, (lines & 2) != 0);
        EXPECT_EQ(image.pixelColor(rect.center().x(), rect.bottom() + 1) == line, (lines & 1) != 0);
    }
}

TEST_F(PaintTest, TheSortMarkIsInRowZeroOfItsColumnAlone) {
    const QImage without = Draw();
    grid->SetSortColumn(2);
    const QImage with = Draw();
    QRect changed;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (with.pixel(x, y) != without.pixel(x, y)) changed |= QRect(x, y, 1, 1);
        }
    }
    QRect heading;
    ASSERT_TRUE(grid->GetCellRect(0, 2, heading));
    ASSERT_FALSE(changed.isEmpty());
    EXPECT_TRUE(heading.contains(changed));
    EXPECT_GT(changed.left(), heading.center().x());
    grid->SetSortAscending(false);
    EXPECT_NE(Draw(), with);
    grid->SetSortColumn(-1);
    EXPECT_EQ(Draw(), without);
}

TEST_F(PaintTest, ACellWithoutRoomDrawsNoText) {
    grid->SetItemFgColour(3, 3, gridColour(250, 0, 0));
    grid->SetRowHeight(3, 2);
    QApplication::processEvents();
    const QImage image = Draw();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ASSERT_NE(image.pixelColor(x, y), QColor(250, 0, 0)) << x << "," << y;
    }
    QImage target(20, 20, QImage::Format_RGB32);
    QPainter painter;
    EXPECT_FALSE(grid->GetCell(3, 3)->Draw(painter, 3, 3, {0, 0, 10, 10}, true));
    painter.begin(&target);
    EXPECT_FALSE(grid->GetCell(3, 3)->Draw(painter, 3, 3, {}, true));
    EXPECT_TRUE(grid->GetCell(3, 3)->Draw(painter, 3, 3, {0, 0, 10, 10}, true));
    grid->MergeCells(3, 3, 3, 4);
    EXPECT_TRUE(grid->GetCell(3, 4)->Draw(painter, 3, 4, {}, true));
}

TEST_F(PaintTest, AnImageIsDrawnWhereItFits) {
    GridImageList images{{8, 8}, {QPixmap(8, 8)}};
    images.images[0].fill(QColor(0, 0, 250));
    grid->SetImageList(&images);
    grid->SetItemImage(3, 3, 0);
    EXPECT_EQ(Count(3, 3, QColor(0, 0, 250)), 64);
    grid->SetItemImage(3, 3, 1);
    EXPECT_EQ(Count(3, 3, QColor(0, 0, 250)), 0);
    grid->SetItemImage(3, 3, 0);
    grid->SetRowHeight(3, 9);
    QApplication::processEvents();
    EXPECT_EQ(Count(3, 3, QColor(0, 0, 250)), 0);
    grid->SetImageList(nullptr);
    Draw();
}

TEST_F(PaintTest, ABlockThatBeginsAboveTheViewIsDrawn) {
    const QColor own(200, 10, 200);
    grid->MergeCells(2, 2, 12, 3);
    grid->SetItemBkColour(2, 2, gridColour(own));
    grid->EnsureVisible(16, 1);
    ASSERT_GT(grid->GetTopleftNonFixedCell().row, 3);
    QApplication::processEvents();
    const int row = grid->GetTopleftNonFixedCell().row;
    EXPECT_LT(row, 12);
    EXPECT_GT(Count(row, 3, own), 500);
    EXPECT_EQ(Count(0, 3, own), 0);
}

TEST_F(PaintTest, ANarrowTreeHasNoGraphic) {
    grid->DeleteAllItems();
    grid->SetColumnCount(1);
    grid->SetTreeColumn(0);
    const uint8_t levels[] = {1, 2, 2};
    grid->GetTreeColumn().InsertTreeBranch(levels);
    grid->GetTreeColumn().SetLineColour(gridColour(200, 0, 0));
    QApplication::processEvents();
    EXPECT_GT(Count(0, 0, QColor(200, 0, 0)), 20);
    EXPECT_GT(Count(1, 0, QColor(200, 0, 0)), 5);
    grid->GetTreeColumn().SetIndent(5);
    EXPECT_EQ(Count(0, 0, QColor(200, 0, 0)), 0);
    EXPECT_EQ(Count(1, 0, QColor(200, 0, 0)), 0);
}

// Text of any kind, in any room, drawn by either way of drawing it.
TEST_F(PaintTest, AnyTextCanBeDrawn) {
    const std::wstring texts[] = {
        L"plain",
        L"\u05E9\u05DC\u05D5\u05DD",
        L"\U0001F600\U0010FFFF",
        std::wstring(1, wchar_t(0x7FFFFFFF)),
        std::wstring(1, wchar_t(0xD800)),
        std::wstring(3, L'\0'),
        L"tab\there\nline",
        std::wstring(2'000'000, L'w'),
        std::wstring(2'000'000, L'\u0416'),
    };
    int row = 1;
    for (const std::wstring& text : texts)
        grid->SetItemText(row++, 1, text);
    for (const uint32_t format :
         {kPlainFormat, 0u, uint32_t(kTextWordBreak), uint32_t(kHeadingFormat),
          uint32_t(kTextExpandTabs | kTextSingleLine),
          uint32_t(kTextRight | kTextBottom | kTextSingleLine)}) {
        for (int i = 1; i < row; ++i)
            grid->SetItemFormat(i, 1, format);
        for (const int width : {1, 3, 12, 90}) {
            grid->SetColumnWidth(1, width);
            Draw();
        }
    }
    grid->AutoSizeColumns();
    Draw();
}

}  // namespace
}  // namespace sg::grid
