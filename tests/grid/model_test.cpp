#include "grid/combo_cell.h"
#include "grid/grid_fixture.h"
#include "grid/tree_column.h"

namespace sg::grid {
namespace {

using ModelTest = GridTest;

TEST_F(ModelTest, FixedCountsNeverExceedTheTotals) {
    EXPECT_FALSE(grid->SetFixedRowCount(21));
    EXPECT_TRUE(grid->SetFixedRowCount(3));
    EXPECT_EQ(grid->GetItemState(2, 2), uint32_t(GVIS_FIXED | GVIS_FIXEDROW));
    EXPECT_TRUE(grid->SetRowCount(2));
    EXPECT_EQ(grid->GetFixedRowCount(), 2);
    EXPECT_TRUE(grid->SetColumnCount(0));
    EXPECT_EQ(grid->GetFixedColumnCount(), 0);
    EXPECT_TRUE(grid->SetRowCount(0));
    EXPECT_EQ(grid->GetFixedRowCount(), 0);
}

TEST_F(ModelTest, OutsideNothingIsAnsweredOrChanged) {
    for (const CCellID id : {CCellID{-1, 0}, {20, 0}, {0, -1}, {0, 6}, {1 << 30, 1 << 30}}) {
        EXPECT_EQ(grid->GetCell(id.row, id.col), nullptr);
        EXPECT_FALSE(grid->SetItemText(id.row, id.col, L"x"));
        EXPECT_FALSE(grid->SetItemTextWithNotify(id.row, id.col, L"x"));
        EXPECT_FALSE(grid->SetItemState(id.row, id.col, GVIS_READONLY));
        EXPECT_FALSE(grid->SetCellType(id.row, id.col, gridCellClass<CGridCellCombo>()));
        EXPECT_FALSE(grid->MergeCells(0, 0, id.row, id.col));
        EXPECT_FALSE(grid->SetFocusCell(id.row, id.col));
        EXPECT_FALSE(grid->RedrawCell(id.row, id.col));
    }
    for (const int item : {-2, -1, 20}) {
        EXPECT_FALSE(grid->SetColumnWidth(item, 10));
        EXPECT_FALSE(grid->SetRowHeight(item, 10));
        EXPECT_FALSE(grid->DeleteRow(item));
        EXPECT_FALSE(grid->DeleteColumn(item));
    }
    EXPECT_FALSE(grid->SetColumnWidth(1, -1));
    EXPECT_FALSE(grid->SetRowCount(-1));
    EXPECT_EQ(grid->InsertRow(L"x", 21), -1);
    EXPECT_EQ(grid->InsertRow(L"x", -2), -1);
    EXPECT_EQ(grid->InsertColumn(L"x", kPlainFormat, 7), -1);
    EXPECT_EQ(grid->GetColumnByName(L"none"), -1);
    EXPECT_EQ(grid->GetRowCount(), 20);
    EXPECT_EQ(recorder.heard, Heard());
}

TEST_F(ModelTest, FocusAndSelectionGoWithTheirCells) {
    grid->SetFocusCell(5, 3);
    grid->SetSelectedRange({4, 2, 6, 3});
    EXPECT_EQ(grid->InsertRow(L"new", 5), 5);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{6, 3}));
    EXPECT_FALSE(grid->IsCellSelected(5, 2));
    EXPECT_TRUE(grid->IsCellSelected(7, 3));
    grid->DeleteRow(0);
    EXPECT_EQ(grid->GetFixedRowCount(), 0);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{5, 3}));
    grid->InsertColumn(L"c", kHeadingFormat, 3);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{5, 4}));
    EXPECT_FALSE(grid->IsCellSelected(5, 3));
    EXPECT_TRUE(grid->IsCellSelected(5, 4));
    grid->DeleteColumn(4);
    EXPECT_FALSE(grid->GetFocusCell().IsValid());
    // Each cell that says that it is selected is so.
    for (int row = 0; row < grid->GetRowCount(); ++row) {
        for (int column = 0; column < grid->GetColumnCount(); ++column) {
            EXPECT_EQ(grid->IsCellSelected(row, column), grid->GetCell(row, column)->IsSelected())
                << row << "," << column;
        }
    }
}

TEST_F(ModelTest, FocusStaysWhereItsRowIsDeleted) {
    grid->SetFocusCell(19, 2);
    grid->DeleteRow(19);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{18, 2}));
    EXPECT_TRUE(grid->GetCell(18, 2)->IsFocused());
    grid->SetRowCount(5);
    EXPECT_FALSE(grid->GetFocusCell().IsValid());
}

TEST_F(ModelTest, ColumnsKeepTheirNamesInAnyOrder) {
    grid->SetColumnName(L"two", 2);
    grid->SetColumnWidth(2, 33);
    EXPECT_FALSE(grid->SetColumnOrder({0, 1, 2}));
    EXPECT_FALSE(grid->SetColumnOrder({0, 1, 2, 3, 4, 4}));
    ASSERT_TRUE(grid->SetColumnOrder({0, 5, 4, 3, 2, 1}));
    EXPECT_EQ(grid->GetColumnByName(L"two"), 4);
    EXPECT_EQ(grid->GetColumnWidth(4), 33);
    EXPECT_EQ(Text(3, 4), "3:2");
    EXPECT_EQ(toUtf8(grid->GetItemTextByName(3, L"two")), "3:2");
    // A column that is inserted in between is stored behind all others.
    grid->InsertColumn(L"new", kPlainFormat, 1);
    EXPECT_EQ(grid->GetColumnByName(L"two"), 5);
    EXPECT_TRUE(grid->SetItemTextByName(3, L"two", L"changed"));
    EXPECT_EQ(Text(3, 5), "changed");
    grid->DeleteColumn(2);
    EXPECT_EQ(Text(3, 4), "changed");
    EXPECT_EQ(grid->GetColumnByName(L"two"), 4);
    grid->DeleteColumn(4);
    EXPECT_EQ(grid->GetColumnByName(L"two"), -1);
}

TEST_F(ModelTest, ACellKeepsItsContentInAnotherClass) {
    grid->SetItemBkColour(3, 3, gridColour(1, 2, 3));
    grid->SetItemData(3, 3, 42);
    grid->GetCell(3, 3)->SetTipText(L"tip");
    ASSERT_TRUE(grid->SetCellType(3, 3, gridCellClass<CGridCellCombo>()));
    EXPECT_NE(dynamic_cast<CGridCellCombo*>(grid->GetCell(3, 3)), nullptr);
    EXPECT_EQ(Text(3, 3), "3:3");
    EXPECT_EQ(grid->GetItemData(3, 3), 42);
    EXPECT_EQ(grid->GetCell(3, 3)->GetBackClr(), gridColour(1, 2, 3));
    EXPECT_EQ(toUtf8(grid->GetCell(3, 3)->GetTipText()), "tip");
    grid->GetCell(3, 3)->Reset();
    EXPECT_EQ(Text(3, 3), "");
    EXPECT_EQ(grid->GetItemData(3, 3), 0);
}

TEST_F(ModelTest, LookComesFromTheDefaultOfTheCellsKind) {
    grid->GetDefaultCell(true, false).SetFormat(kHeadingFormat);
    EXPECT_EQ(grid->GetCell(0, 2)->GetFormat(), uint32_t(kHeadingFormat));
    EXPECT_EQ(grid->GetCell(2, 2)->GetFormat(), kPlainFormat);
    EXPECT_EQ(grid->GetCell(0, 2)->GetBackClr(), grid->GetDefaultCell(true, false).GetBackClr());
    EXPECT_TRUE(grid->GetDefaultCell(false, false).IsReadOnly());
    grid->GetDefaultCell(false, false).SetState(0);
    EXPECT_TRUE(grid->GetDefaultCell(false, false).IsReadOnly());
}

TEST_F(ModelTest, BlocksAreOneCell) {
    ASSERT_TRUE(grid->MergeCells(2, 2, 3, 3));
    EXPECT_EQ(grid->GetCell(2, 2)->GetMergeRange(), (CCellRange{2, 2, 3, 3}));
    EXPECT_TRUE(grid->GetCell(3, 3)->IsMergedIntoOther());
    EXPECT_FALSE(grid->GetCell(3, 3)->IsShown());
    EXPECT_EQ(grid->GetCell(3, 3)->GetMergeCell(), (CCellID{2, 2}));
    QRect block, right;
    ASSERT_TRUE(grid->GetCellRect(2, 2, block));
    ASSERT_TRUE(grid->GetCellRect(2, 4, right));
    EXPECT_EQ(block.right() + 2, right.left());
    EXPECT_EQ(block.height(), 2 * right.height() + 1);
    EXPECT_EQ(grid->GetCellFromPt(block.bottomRight()), (CCellID{2, 2}));

    // It grows and shrinks with the rows and columns in it.
    grid->InsertRow(L"", 3);
    EXPECT_EQ(grid->GetCell(2, 2)->GetMergeRange(), (CCellRange{2, 2, 4, 3}));
    EXPECT_TRUE(grid->GetCell(3, 3)->IsMergedIntoOther());
    grid->DeleteRow(2);
    EXPECT_EQ(grid->GetCell(2, 2)->GetMergeRange(), (CCellRange{2, 2, 3, 3}));
    grid->DeleteColumn(3);
    EXPECT_EQ(grid->GetCell(2, 2)->GetMergeRange(), (CCellRange{2, 2, 3, 2}));
    grid->DeleteRow(3);
    EXPECT_FALSE(grid->GetCell(2, 2)->IsMerged());
    EXPECT_TRUE(grid->GetCell(2, 2)->IsShown());

    // A new block takes those apart that it meets.
    grid->MergeCells(5, 1, 6, 2);
    grid->MergeCells(6, 2, 7, 3);
    EXPECT_FALSE(grid->GetCell(5, 1)->IsMerged());
    EXPECT_FALSE(grid->GetCell(5, 2)->IsMergedIntoOther());
    grid->UnMergeCells(7, 3, 7, 3);
    EXPECT_TRUE(grid->GetCell(6, 3)->IsShown());
    EXPECT_FALSE(grid->GetCell(6, 2)->IsMerged());
}

TEST_F(ModelTest, GuardedOperationsAreRefused) {
    grid->SetVirtualMode(true);
    EXPECT_EQ(grid->InsertRow(L"x"), -1);
    EXPECT_FALSE(grid->DeleteRow(3));
    EXPECT_FALSE(grid->SortItems(CGridCtrl::CompareTexts, 1, true));
    EXPECT_FALSE(grid->Save(L"/nonexistent/x"));
    EXPECT_FALSE(grid->Load(L"/nonexistent/x"));
    EXPECT_FALSE(grid->SetCellType(1, 1, gridCellClass<CGridCell>()));
    EXPECT_TRUE(grid->errors.empty());
}

TEST_F(ModelTest, RowsAndColumnsKeepTheirSizeInCharacters) {
    grid->SetColumnWidth(2, 0);
    const int width = grid->GetColumnWidth(1), height = grid->GetRowHeight(1);
    QFont large = grid->font();
    large.setPixelSize(QFontInfo(large).pixelSize() * 2);
    grid->setFont(large);
    EXPECT_NEAR(grid->GetColumnWidth(1), 2 * width, width / 5);
    EXPECT_NEAR(grid->GetRowHeight(1), 2 * height, height / 4);
    EXPECT_EQ(grid->GetColumnWidth(2), 0);
}

TEST_F(ModelTest, SystemColoursAreFollowedWhereNobodyChose) {
    grid->GetDefaultCell(true, false).SetBackClr(gridColour(9, 9, 9));
    QPalette dark = grid->palette();
    dark.setColor(QPalette::Base, QColor(10, 20, 30));
    dark.setColor(QPalette::Button, QColor(40, 50, 60));
    dark.setColor(QPalette::Dark, QColor(5, 5, 5));
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(120, 120, 120));
    grid->setPalette(dark);
    EXPECT_EQ(grid->GetTreeColumn().GetLineColour(), gridColour(120, 120, 120)) << "can be seen";
    EXPECT_EQ(grid->GetCell(3, 3)->GetBackClr(), gridColour(10, 20, 30));
    EXPECT_EQ(grid->GetCell(3, 0)->GetBackClr(), gridColour(40, 50, 60));
    EXPECT_EQ(grid->GetCell(0, 3)->GetBackClr(), gridColour(9, 9, 9));
}

TEST_F(ModelTest, ColumnsFitTheirContents) {
    grid->SetColumnWidth(4, 0);
    grid->SetItemText(0, 2, L"a heading that is much longer than what is below it, by far");
    grid->AutoSizeColumns(kSizeByPlain);
    const int byPlain = grid->GetColumnWidth(2);
    grid->AutoSizeColumns(kSizeByAll);
    EXPECT_GT(grid->GetColumnWidth(2), 4 * byPlain);
    EXPECT_EQ(grid->GetColumnWidth(4), 0);
    EXPECT_FALSE(grid->AutoSizeColumn(6));

    grid->ExpandToFit();
    int total = 0;
    for (int column = 0; column < 6; ++column)
        total += grid->GetColumnWidth(column);
    EXPECT_EQ(total, grid->viewport()->width());
    EXPECT_EQ(grid->GetColumnWidth(4), 0);
}

}  // namespace
}  // namespace sg::grid
