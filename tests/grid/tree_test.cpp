#include <random>

#include "grid/grid_fixture.h"
#include "grid/tree_cell.h"
#include "grid/tree_column.h"

namespace sg::grid {
namespace {

class TreeTest : public GridTest {
  protected:
    CTreeColumn& Tree() { return grid->GetTreeColumn(); }

    void SetUpTree(const std::vector<uint8_t>& levels) {
        grid->DeleteAllItems();
        grid->SetColumnCount(2);
        grid->SetRowCount(1);
        grid->SetFixedRowCount(1);
        ASSERT_TRUE(grid->SetTreeColumn(0));
        ASSERT_EQ(Tree().InsertTreeBranch(levels), 1);
        for (int row = 1; row < grid->GetRowCount(); ++row)
            grid->SetItemText(row, 0, L"r" + std::to_wstring(row));
        QApplication::processEvents();
    }

    // The rows that can be seen.
    std::string Shown() {
        std::string rows;
        for (int row = 1; row < grid->GetRowCount(); ++row) {
            EXPECT_EQ(Tree().IsShown(row), grid->GetRowHeight(row) > 0) << row;
            if (grid->GetRowHeight(row) > 0) rows += (rows.empty() ? "" : " ") + Text(row, 0);
        }
        return rows;
    }

    std::string Levels() {
        std::string levels;
        for (int row = 1; row < grid->GetRowCount(); ++row)
            levels += char('0' + Tree().GetLevel(row));
        return levels;
    }
};

//                                     1  2  3  4  5  6  7  8
const std::vector<uint8_t> outline = {1, 2, 3, 3, 2, 1, 2, 1};

TEST_F(TreeTest, TheTreeGoesWithItsColumn) {
    SetUpTree(outline);
    grid->InsertColumn(L"", kPlainFormat, 0);
    EXPECT_EQ(Tree().FindLastChild(1), 5);
    grid->DeleteColumn(2);
    EXPECT_TRUE(Tree().Collapse(1));
    grid->SetColumnOrder({1, 0});
    EXPECT_EQ(Tree().GetColumn(), grid->GetCell(1, 0)->AsTreeCell() != nullptr ? 0 : 1);
    EXPECT_TRUE(Tree().Expand(1));
    grid->DeleteColumn(1 - Tree().GetColumn());
    EXPECT_EQ(Tree().GetColumn(), 0);
    EXPECT_EQ(Tree().FindLastChild(1), 5);
    grid->DeleteColumn(0);
    EXPECT_EQ(Tree().GetColumn(), -1);
    EXPECT_FALSE(Tree().Collapse(1));
}

TEST_F(TreeTest, RowsKnowTheirRelatives) {
    SetUpTree(outline);
    EXPECT_EQ(grid->GetColumnFormat(0), 4u);
    EXPECT_EQ(Tree().FindNextSibling(1), 6);
    EXPECT_EQ(Tree().FindNextSibling(2), 5);
    EXPECT_EQ(Tree().FindNextSibling(4), -1);
    EXPECT_EQ(Tree().FindPreviousSibling(5), 2);
    EXPECT_EQ(Tree().FindPreviousSibling(7), -1);
    EXPECT_EQ(Tree().FindParent(4), 2);
    EXPECT_EQ(Tree().FindParent(1), -1);
    EXPECT_EQ(Tree().FindLastChild(1), 5);
    EXPECT_EQ(Tree().FindLastChild(8), -1);
    for (const int row : {-1, 0, 9, 1000}) {
        EXPECT_EQ(Tree().FindNextSibling(row), -1);
        EXPECT_EQ(Tree().GetLevel(row), 0);
        EXPECT_FALSE(Tree().IsShown(row));
        EXPECT_FALSE(Tree().Toggle(row));
        EXPECT_FALSE(Tree().Expand(row));
        EXPECT_EQ(Tree().DeleteTreeBranch(row), 0);
    }
    bool hasHidden, allShown, isLast;
    EXPECT_TRUE(Tree().HasChildren(1, hasHidden, allShown, isLast));
    EXPECT_FALSE(hasHidden);
    EXPECT_TRUE(allShown);
    EXPECT_FALSE(isLast);
    EXPECT_FALSE(Tree().HasChildren(4, hasHidden, allShown, isLast));
    EXPECT_TRUE(isLast);
}

TEST_F(TreeTest, RowsFold) {
    SetUpTree(outline);
    EXPECT_TRUE(Tree().Collapse(1));
    EXPECT_EQ(Shown(), "r1 r6 r7 r8");
    EXPECT_TRUE(Tree().Expand(1));
    EXPECT_EQ(Shown(), "r1 r2 r5 r6 r7 r8");
    Tree().Expand(2);
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r7 r8");
    Tree().Collapse(8);
    Tree().Collapse(3);
    EXPECT_FALSE(Tree().Toggle(8));
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r7 r8");
    Tree().Toggle(6);
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r8");
    Tree().Toggle(6);
    Tree().ShowLevel(1);
    EXPECT_EQ(Shown(), "r1 r6 r8");
    Tree().ShowLevel(2);
    EXPECT_EQ(Shown(), "r1 r2 r5 r6 r7 r8");
    Tree().ShowLevel(128);
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r7 r8");
}

TEST_F(TreeTest, ARowOutsideTheTreeStopsTheScans) {
    SetUpTree({1, 2, 0, 2, 1});
    Tree().Collapse(1);
    EXPECT_EQ(Shown(), "r1 r3 r4 r5");
    EXPECT_FALSE(Tree().Collapse(3));
    EXPECT_EQ(Tree().FindParent(4), -1);
    EXPECT_EQ(Tree().FindNextSibling(2), -1);
}

TEST_F(TreeTest, BranchesComeAndGo) {
    SetUpTree({1, 2, 1});
    const uint8_t branch[] = {2, 3, 2};
    grid->SetItemFgColour(3, 0, gridColour(1, 2, 3));
    EXPECT_EQ(Tree().InsertTreeBranch(branch, 3), 3);
    EXPECT_EQ(Levels(), "122321");
    EXPECT_EQ(grid->GetCell(4, 0)->GetTextClr(), gridColour(1, 2, 3));
    EXPECT_EQ(Tree().InsertTreeBranch(branch, 0), 1);  // behind the fixed rows
    EXPECT_EQ(Tree().InsertTreeBranch(branch, 99), 10);
    EXPECT_EQ(Levels(), "232122321232");
    EXPECT_EQ(Tree().GetTotalRows(), 13);
    EXPECT_EQ(Tree().InsertTreeBranch({}), -1);
    EXPECT_EQ(Tree().DeleteTreeBranch(5), 1);
    EXPECT_EQ(Tree().DeleteTreeBranch(4), 4);
    EXPECT_EQ(Levels(), "2321232");
    EXPECT_EQ(Tree().DeleteTreeBranch(4), 4);
    EXPECT_EQ(Levels(), "232");
    EXPECT_EQ(grid->GetRowCount(), 4);
    EXPECT_TRUE(Tree().GetAllowDraw());
    // Rows that come and go in other ways count too.
    grid->InsertRow(L"x", 2);
    EXPECT_EQ(Tree().GetTotalRows(), 5);
    grid->DeleteRow(1);
    grid->SetRowCount(3);
    EXPECT_EQ(Tree().GetTotalRows(), 3);
    EXPECT_EQ(Levels(), "03");
}

TEST_F(TreeTest, SetUpRefusesWhatIsNoTree) {
    EXPECT_FALSE(Tree().TreeSetup(*grid, 0, 5, 1, {}, true, false, &gridCellClass<CGridCell>()));
    EXPECT_FALSE(Tree().TreeSetup(*grid, 9, 5, 1, {}, true, false, nullptr));
    EXPECT_FALSE(Tree().TreeSetup(*grid, 0, 1, 2, {}, true, false, nullptr));
    EXPECT_FALSE(grid->SetTreeColumn(9));
    EXPECT_EQ(grid->GetRowCount(), 20);
    const uint8_t levels[] = {1, 2};
    EXPECT_TRUE(
        Tree().TreeSetup(*grid, 1, 5, 1, levels, true, false, &gridCellClass<CGridTreeBtnCell>()));
    EXPECT_EQ(Levels(), "1211");
    EXPECT_NE(dynamic_cast<CGridTreeBtnCell*>(grid->GetCell(4, 1)), nullptr);
}

TEST_F(TreeTest, TallRowsKeepTheirHeight) {
    SetUpTree(outline);
    grid->SetRowHeight(2, 77);
    Tree().RefreshRows();
    EXPECT_EQ(grid->GetRowHeight(2), 77);
}

TEST_F(TreeTest, TheBoxAndTheKeyboardFold) {
    SetUpTree(outline);
    grid->SetEditable(false);
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(2, 0, rect));
    const QPoint box = rect.topLeft() + QPoint(10 + 2 + 4, 8);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, box);
    EXPECT_EQ(Shown(), "r1 r2 r5 r6 r7 r8");
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, box);
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r7 r8");
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, box + QPoint(60, 0));
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r7 r8");
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, box + QPoint(60, 0));
    EXPECT_EQ(Shown(), "r1 r2 r5 r6 r7 r8");
    grid->SetFocusCell(1, 0);
    Key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(Shown(), "r1 r6 r7 r8");
    Key(Qt::Key_Down);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{6, 0}));
    grid->SetFocusCell(1, 0);
    Key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(Shown(), "r1 r2 r5 r6 r7 r8");
    // The focus does not stay in what is folded away.
    grid->SetFocusCell(5, 1);
    Tree().Collapse(1);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{1, 1}));
}

TEST_F(TreeTest, InAnEditableGridTheDoubleClickEdits) {
    SetUpTree(outline);
    const QPoint text = Middle(1, 0);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, text);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, text);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, text);
    EXPECT_EQ(Shown(), "r1 r2 r3 r4 r5 r6 r7 r8");
    ASSERT_NE(Editor(), nullptr);
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(1, 0, rect));
    EXPECT_EQ(Editor()->x(), rect.left() + 10);
    // A press on the box of the focus cell folds and does not edit.
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, rect.topLeft() + QPoint(6, 8));
    Settle();
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(Shown(), "r1 r6 r7 r8");
}

// What a row draws, worked out row by row.
TreeRowLook lookAt(const CTreeColumn& tree, int row) {
    TreeRowLook look;
    bool hasHidden, allShown, isLast;
    look.hasChildren = tree.HasChildren(row, hasHidden, allShown, isLast);
    // Deeper rows count as children of a row whose next level is skipped.
    look.hasChildren = tree.GetLevel(row) > 0 && row + 1 < tree.GetTotalRows() &&
                       tree.GetLevel(row + 1) > tree.GetLevel(row);
    look.isCollapsed = look.hasChildren && hasHidden;
    const int next = row + 1 < tree.GetTotalRows() ? tree.GetLevel(row + 1) : 0;
    look.isLast = look.hasChildren ? isLast : next < tree.GetLevel(row);
    for (int level = 2; level < tree.GetLevel(row); ++level) {
        for (int other = row + 1; other < tree.GetTotalRows(); ++other) {
            if (tree.GetLevel(other) < level) break;
            if (tree.GetLevel(other) > level) continue;
            look.rails[size_t(level)] = tree.IsShown(other);
            break;
        }
    }
    return look;
}

TEST_F(TreeTest, LooksFollowFromTheRowsBelow) {
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        std::vector<uint8_t> levels;
        for (int i = 0; i < 60; ++i)
            levels.push_back(uint8_t(random() % 5));
        SetUpTree(levels);
        for (int i = 0; i < 8; ++i)
            Tree().Toggle(1 + int(random() % 60));
        for (int row = 1; row < grid->GetRowCount(); ++row) {
            if (Tree().GetLevel(row) == 0) continue;
            const TreeRowLook wanted = lookAt(Tree(), row), look = Tree().LookOf(row);
            EXPECT_EQ(look.hasChildren, wanted.hasChildren) << Levels() << " " << row;
            EXPECT_EQ(look.isCollapsed, wanted.isCollapsed) << Levels() << " " << row;
            EXPECT_EQ(look.isLast, wanted.isLast) << Levels() << " " << row;
            EXPECT_EQ(look.rails, wanted.rails) << Levels() << " " << row;
        }
    }
}

}  // namespace
}  // namespace sg::grid
