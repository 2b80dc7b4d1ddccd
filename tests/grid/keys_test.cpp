#include "grid/grid_fixture.h"

namespace sg::grid {
namespace {

class KeysTest : public GridTest {
  protected:
    // Row 3 and column 3 are hidden.
    void SetUp() override {
        GridTest::SetUp();
        grid->SetRowHeight(3, 0);
        grid->SetColumnWidth(3, 0);
        QApplication::processEvents();
    }
};

struct Move {
    CCellID from;
    int key;
    Qt::KeyboardModifiers modifiers;
    CCellID to;
};

TEST_F(KeysTest, EachKeyLeadsToItsCell) {
    grid->SetHandleTabKey(true);
    grid->SetRowCount(8);  // all rows are in view
    const Move moves[] = {
        {{2, 2}, Qt::Key_Down, {}, {4, 2}},
        {{7, 2}, Qt::Key_Down, {}, {7, 2}},
        {{4, 2}, Qt::Key_Up, {}, {2, 2}},
        {{1, 2}, Qt::Key_Up, {}, {1, 2}},
        {{2, 2}, Qt::Key_Right, {}, {2, 4}},
        {{2, 5}, Qt::Key_Right, {}, {2, 5}},
        {{2, 4}, Qt::Key_Left, {}, {2, 2}},
        {{2, 1}, Qt::Key_Left, {}, {2, 1}},
        {{2, 2}, Qt::Key_Tab, {}, {2, 4}},
        {{2, 5}, Qt::Key_Tab, {}, {4, 1}},
        {{7, 5}, Qt::Key_Tab, {}, {7, 5}},
        {{4, 1}, Qt::Key_Backtab, Qt::ShiftModifier, {2, 5}},
        {{1, 1}, Qt::Key_Backtab, Qt::ShiftModifier, {1, 1}},
        {{2, 4}, Qt::Key_Home, {}, {2, 1}},
        {{6, 4}, Qt::Key_Home, Qt::ControlModifier, {1, 1}},
        {{2, 2}, Qt::Key_End, {}, {2, 5}},
        {{2, 2}, Qt::Key_End, Qt::ControlModifier, {7, 5}},
        {{2, 2}, Qt::Key_PageDown, {}, {7, 2}},
        {{6, 2}, Qt::Key_PageUp, {}, {1, 2}},
        {{2, 2}, Qt::Key_F5, {}, {2, 2}},
    };
    for (const Move& move : moves) {
        grid->SetFocusCell(move.from.row, move.from.col);
        recorder.Take();
        Key(move.key, move.modifiers);
        EXPECT_EQ(grid->GetFocusCell(), move.to)
            << move.from << " " << QKeySequence(move.key).toString().toStdString();
        EXPECT_EQ(recorder.Take().size(), move.from == move.to ? 0u : 2u);
    }
}

TEST_F(KeysTest, PagesScrollByWhatIsSeen) {
    grid->resize(500, grid->GetRowHeight(1) * 7);  // of plain rows about 6 are seen
    QApplication::processEvents();
    const int top = grid->GetTopleftNonFixedCell().row;
    grid->SetFocusCell(2, 1);
    Key(Qt::Key_PageDown);
    const int scrolled = grid->GetTopleftNonFixedCell().row - top;
    EXPECT_GT(scrolled, 3);
    EXPECT_EQ(grid->GetFocusCell().row, 2 + scrolled);
    for (int i = 0; i < 5; ++i)
        Key(Qt::Key_PageDown);
    EXPECT_EQ(grid->GetFocusCell().row, 19);
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(19, 1, rect));
    EXPECT_LE(rect.bottom(), grid->viewport()->height());
    for (int i = 0; i < 6; ++i)
        Key(Qt::Key_PageUp);
    EXPECT_EQ(grid->GetFocusCell().row, 1);
    EXPECT_EQ(grid->GetTopleftNonFixedCell().row, 1);
}

TEST_F(KeysTest, FocusIsScrolledIntoView) {
    grid->SetFocusCell(1, 1);
    for (int i = 0; i < 17; ++i)
        Key(Qt::Key_Down);
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(19, 1, rect));
    EXPECT_LE(rect.bottom(), grid->viewport()->height());
    for (int i = 0; i < 17; ++i)
        Key(Qt::Key_Up);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{1, 1}));
    EXPECT_EQ(grid->GetTopleftNonFixedCell(), (CCellID{1, 1}));
}

TEST_F(KeysTest, ShiftExtendsTheSelectionFromItsStart) {
    grid->SetFocusCell(2, 2);
    Key(Qt::Key_Right);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{2, 2, 5, 4}));
    EXPECT_EQ(grid->GetSelectedCount(), 4 * 3);
    Key(Qt::Key_Up);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{4, 2, 4, 2}));
}

TEST_F(KeysTest, OwnerIsToldBeforeAndAfter) {
    grid->SetFocusCell(2, 2);
    recorder.Take();
    Key(Qt::Key_Down);
    EXPECT_EQ(recorder.Take(), (Heard{"changing 2,2", "changed 4,2"}));
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(recorder.Take(), (Heard{"changing 4,2", "changed 4,2"}));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{1, 1, 19, 5}));
}

TEST_F(KeysTest, OwnerCanTakeKeys) {
    grid->SetFocusCell(2, 2);
    recorder.takesKeys = true;
    Key(Qt::Key_Delete);
    Key(Qt::Key_Down);
    Key(Qt::Key_X);
    EXPECT_EQ(Text(2, 2), "2:2");
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{2, 2}));
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(recorder.keys, (std::vector<int>{Qt::Key_Delete, Qt::Key_Down, Qt::Key_X}));
}

TEST_F(KeysTest, DeleteEmptiesTheFocusCellAlone) {
    grid->SetFocusCell(2, 2);
    grid->SetSelectedRange({1, 1, 4, 4});
    Key(Qt::Key_Delete);
    EXPECT_EQ(Text(2, 2), "");
    EXPECT_EQ(Text(2, 1), "2:1");
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2", "end 2,2"}));
    EXPECT_TRUE(grid->GetCell(2, 2)->IsModified());
    grid->SetEditable(false);
    grid->SetFocusCell(2, 1);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Text(2, 1), "2:1");
}

TEST_F(KeysTest, BlocksArePassedInOneStep) {
    grid->MergeCells(4, 1, 5, 2);
    grid->SetFocusCell(2, 1);
    Key(Qt::Key_Down);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{4, 1}));
    Key(Qt::Key_Right);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{4, 4}));
    Key(Qt::Key_Left);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{4, 1}));
    Key(Qt::Key_Down);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{6, 1}));
}

TEST_F(KeysTest, TabIsTheDialogsUnlessTheGridWantsIt) {
    QWidget dialog;
    auto* const first = new TestGrid;
    first->setParent(&dialog);
    auto* const second = new QLineEdit(&dialog);
    first->SetColumnCount(3);
    first->SetRowCount(3);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    second->setFocus();
    // Who comes by Tab finds a cell.
    QTest::keyClick(second, Qt::Key_Tab);
    ASSERT_TRUE(first->hasFocus());
    EXPECT_EQ(first->GetFocusCell(), (CCellID{0, 0}));
    QTest::keyClick(first, Qt::Key_Tab);
    EXPECT_TRUE(second->hasFocus());
    first->SetHandleTabKey(true);
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Tab);
    EXPECT_TRUE(first->hasFocus());
    EXPECT_EQ(first->GetFocusCell(), (CCellID{0, 1}));
    first->SetTabLeavesGrid(true);
    QTest::keyClick(first, Qt::Key_Tab);
    EXPECT_TRUE(second->hasFocus());
    QApplication::setActiveWindow(grid.get());
}

TEST_F(KeysTest, WithoutAFocusCellKeysPassOn) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(grid.get(), &key);
    EXPECT_FALSE(key.isAccepted());
    EXPECT_TRUE(recorder.keys.empty());
}

TEST_F(KeysTest, RowsMayBeDeletedWhenTheSelectionChanges) {
    grid->SetFocusCell(10, 2);
    recorder.onChanging = [&] { grid->SetRowCount(5); };
    Key(Qt::Key_Down);
    EXPECT_FALSE(grid->GetFocusCell().IsValid());
    recorder.onChanging = nullptr;
    grid->SetFocusCell(4, 2);
    recorder.onChanged = [&] { grid->DeleteAllItems(); };
    Key(Qt::Key_Up);
    EXPECT_EQ(grid->GetRowCount(), 0);
    EXPECT_EQ(grid->GetSelectedCount(), 0);
}

TEST_F(KeysTest, RowsMayBeDeletedWhenAHeadingIsClicked) {
    for (const CCellID heading : {CCellID{6, 0}, CCellID{0, 5}}) {
        recorder.onChanging = nullptr;
        Fill(20, 6, 1, 1);
        grid->SetFocusCell(3, 2);
        recorder.onChanging = [&] {
            grid->SetRowCount(4);
            grid->SetColumnCount(3);
        };
        Click(heading.row, heading.col);
        EXPECT_EQ(grid->GetFocusCell(), (CCellID{3, 2}));
        Key(Qt::Key_Up, Qt::ShiftModifier);  // from where the selection began
        EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{2, 2, 3, 2}));
    }
}

}  // namespace
}  // namespace sg::grid
