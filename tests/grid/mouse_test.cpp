#include <QScrollBar>

#include "grid/grid_fixture.h"
#include "grid/title_tip.h"

namespace sg::grid {
namespace {

class MouseTest : public GridTest {
  protected:
    void Press(QPoint point, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mousePress(grid->viewport(), Qt::LeftButton, modifiers, point);
    }
    void MoveTo(QPoint point) {
        QMouseEvent move(QEvent::MouseMove, point, grid->viewport()->mapToGlobal(point),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(grid->viewport(), &move);
    }
    void Release(QPoint point) { QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, point); }

    // On the line at the right of a column, in the heading.
    QPoint ColumnLine(int column) const {
        QRect rect;
        EXPECT_TRUE(grid->GetCellRect(0, column, rect));
        return {rect.right() + 1, rect.center().y()};
    }
};

TEST_F(MouseTest, AClickMovesTheFocusAndTheNextOneEdits) {
    Click(3, 2);
    EXPECT_EQ(recorder.Take(), (Heard{"changing -1,-1", "changed 3,2", "click 3,2"}));
    EXPECT_EQ(Editor(), nullptr);
    QTest::qWait(0);
    Press(Middle(3, 2));
    EXPECT_EQ(Editor(), nullptr);
    Release(Middle(3, 2));
    EXPECT_EQ(recorder.Take(), (Heard{"click 3,2", "begin 3,2"}));
    ASSERT_NE(Editor(), nullptr);
    Click(5, 3);
    Settle();
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{5, 3}));
}

TEST_F(MouseTest, ADragSelects) {
    Press(Middle(2, 2));
    MoveTo(Middle(4, 3));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{2, 2, 4, 3}));
    MoveTo(Middle(1, 1));
    Release(Middle(1, 1));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{1, 1, 2, 2}));
    EXPECT_EQ(recorder.Take(), (Heard{"changing -1,-1", "changed 2,2", "changing 2,2",
                                      "changed 4,3", "changing 4,3", "changed 1,1", "click 1,1"}));
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(MouseTest, APressThatIsLostClicksNothing) {
    Click(3, 2);
    recorder.Take();
    Press(Middle(3, 2));
    QMouseEvent move(QEvent::MouseMove, Middle(5, 3), grid->viewport()->mapToGlobal(Middle(5, 3)),
                     Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(grid->viewport(), &move);
    Release(Middle(3, 2));
    EXPECT_EQ(recorder.Take(), Heard());
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{3, 2}));
}

TEST_F(MouseTest, CtrlKeepsWhatIsSelectedAndShiftExtends) {
    Click(1, 1);
    Click(3, 3, Qt::ControlModifier);
    EXPECT_EQ(grid->GetSelectedCount(), 2);
    EXPECT_TRUE(grid->IsCellSelected(1, 1));
    Click(5, 4, Qt::ShiftModifier);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{3, 3, 5, 4}));
}

TEST_F(MouseTest, ADragBelowTheEdgeScrollsAndSelects) {
    Press(Middle(2, 2));
    MoveTo({Middle(2, 2).x(), grid->viewport()->height() + 40});
    ASSERT_TRUE(QTest::qWaitFor([&] { return grid->GetFocusCell().row == 19; }));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{2, 2, 19, 2}));
    MoveTo({Middle(19, 2).x(), -40});
    ASSERT_TRUE(QTest::qWaitFor([&] { return grid->GetFocusCell().row == 1; }));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{1, 2, 2, 2}));
    Release({10, -40});
}

TEST_F(MouseTest, ADragThatEndsOnAHeadingDoesNotClickIt) {
    Press(Middle(3, 2));
    MoveTo(Middle(1, 2));
    recorder.Take();
    Release(Middle(0, 2));
    EXPECT_EQ(recorder.Take(), (Heard{"click 3,2"}));
    Press(Middle(3, 2));
    MoveTo(Middle(5, 4));
    recorder.Take();
    Release(Middle(5, 4));
    EXPECT_EQ(recorder.Take(), (Heard{"click 5,4"}));
}

TEST_F(MouseTest, HeadingsSelectRowsAndColumns) {
    const QPoint column = Middle(0, 3), row = Middle(4, 0), corner = Middle(0, 0);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, column);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{1, 3, 19, 3}));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{4, 1, 4, 5}));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, corner);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{1, 1, 19, 5}));
    grid->SetFixedColumnSelection(false);
    grid->SetFixedRowSelection(false);
    grid->ResetSelectedRange();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, column);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, row);
    EXPECT_EQ(grid->GetSelectedCount(), 0);
}

TEST_F(MouseTest, InListModeRowsAreSelectedAndHeadingsAreTheOwners) {
    grid->SetSortColumn(2);
    grid->SetListMode(true);
    EXPECT_EQ(grid->GetSortColumn(), -1);
    EXPECT_FALSE(grid->GetFixedRowSelection());
    Click(3, 2);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{3, 1, 3, 5}));
    recorder.Take();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, Middle(0, 3));
    EXPECT_EQ(recorder.Take(), (Heard{"fixed row 0,3", "click 0,3"}));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{3, 1, 3, 5}));
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{3, 1, 4, 5}));
}

TEST_F(MouseTest, DividingLinesSizeWhatEndsThere) {
    const int width = grid->GetColumnWidth(2);
    for (const int beside : {-7, 0, 7}) {
        grid->SetColumnWidth(2, width);
        QApplication::processEvents();
        const QPoint line = ColumnLine(2) + QPoint(beside, 0);
        Press(line);
        MoveTo(line + QPoint(30, 50));
        Release(line + QPoint(30, 50));
        EXPECT_EQ(grid->GetColumnWidth(2), width + 30 + beside) << beside;
    }
    EXPECT_EQ(recorder.Take(), Heard());
    const QPoint line = ColumnLine(2);
    Press(line);
    MoveTo({0, line.y()});
    Release({0, line.y()});
    EXPECT_EQ(grid->GetColumnWidth(2), 1);

    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(3, 0, rect));
    const int height = grid->GetRowHeight(3);
    Press({5, rect.bottom() + 1});
    MoveTo({5, rect.bottom() + 21});
    Release({5, rect.bottom() + 21});
    EXPECT_EQ(grid->GetRowHeight(3), height + 20);

    grid->SetRowResize(false);
    grid->SetColumnResize(false);
    Press(ColumnLine(4));
    MoveTo(ColumnLine(4) + QPoint(30, 0));
    Release(ColumnLine(4));
    EXPECT_EQ(grid->GetColumnWidth(4), width);
}

TEST_F(MouseTest, ADoubleClickOnALineFitsTheColumn) {
    grid->SetItemText(9, 2, L"the widest of all texts in this column");
    const int height = grid->GetRowHeight(3);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, ColumnLine(2));
    EXPECT_EQ(grid->GetColumnWidth(2), grid->GetCell(9, 2)->GetCellExtent().width() + 3);
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(3, 0, rect));
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, {5, rect.bottom() + 1});
    EXPECT_EQ(grid->GetRowHeight(3), height);
    EXPECT_EQ(recorder.Take(), Heard());
}

TEST_F(MouseTest, ADoubleClickIsToldAndThenEdits) {
    Click(3, 2);
    recorder.Take();
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, Middle(3, 2));
    Release(Middle(3, 2));
    EXPECT_EQ(recorder.Take(), (Heard{"double 3,2", "click 3,2", "begin 3,2"}));
    EXPECT_NE(Editor(), nullptr);
    QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, Middle(4, 3));
    EXPECT_EQ(recorder.Take().back(), "right 4,3");
}

TEST_F(MouseTest, RowsMayGoInAClick) {
    recorder.onClick = [&] { grid->DeleteAllItems(); };
    Click(3, 2);
    EXPECT_EQ(grid->GetRowCount(), 0);
    EXPECT_EQ(Editor(), nullptr);
    Press({50, 50});
    MoveTo({60, 60});
    Release({60, 60});
}

TEST_F(MouseTest, TheWheelScrollsRows) {
    grid->SetWheelLines(2);
    const auto turn = [&](int angle) {
        QWheelEvent event({50, 50}, grid->viewport()->mapToGlobal(QPoint(50, 50)), {}, {0, angle},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(grid->viewport(), &event);
        return grid->GetTopleftNonFixedCell().row;
    };
    grid->SetRowHeight(2, 0);
    QApplication::processEvents();
    EXPECT_EQ(turn(-120), 4);  // over the hidden row
    EXPECT_EQ(turn(-30), 4);
    EXPECT_EQ(turn(-30), 5);
    EXPECT_EQ(turn(240), 1);
    EXPECT_EQ(turn(1200), 1);
}

TEST_F(MouseTest, ATipStandsOverTextThatIsCutOff) {
    grid->SetItemText(3, 2, L"a text that the cell is much too narrow to show");
    const auto tip = [&]() -> CTitleTip* {
        for (QWidget* const widget : grid->findChildren<QWidget*>()) {
            if (auto* const found = dynamic_cast<CTitleTip*>(widget)) return found;
        }
        return nullptr;
    };
    const auto rest = [&](QPoint point) {
        QHelpEvent event(QEvent::ToolTip, point, grid->viewport()->mapToGlobal(point));
        QApplication::sendEvent(grid->viewport(), &event);
    };
    rest(Middle(4, 2));
    EXPECT_EQ(tip(), nullptr);
    rest(Middle(3, 2));
    ASSERT_NE(tip(), nullptr);
    EXPECT_TRUE(tip()->isVisible());
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(3, 2, rect));
    EXPECT_GT(tip()->width(), rect.width());
    MoveTo(Middle(5, 2));
    EXPECT_FALSE(tip()->isVisible());
    rest(Middle(3, 2));
    EXPECT_TRUE(tip()->isVisible());
    Click(3, 2);  // through the tip
    EXPECT_FALSE(tip()->isVisible());
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{3, 2}));
    grid->SetTitleTips(false);
    rest(Middle(3, 2));
    EXPECT_FALSE(tip()->isVisible());
}

TEST_F(MouseTest, WhatIsScrolledAwayHasNoPlace) {
    grid->EnsureVisible(19, 1);
    const int top = grid->GetTopleftNonFixedCell().row;
    ASSERT_GT(top, 2);
    QRect rect;
    EXPECT_FALSE(grid->GetCellRect(top - 1, 1, rect));
    EXPECT_TRUE(grid->GetCellRect(top, 1, rect));
    EXPECT_TRUE(grid->GetCellRect(0, 1, rect));
    EXPECT_EQ(grid->GetCellFromPt({-1, 5}), CCellID());
    // The last row is seen as a whole, and nothing lies behind it.
    ASSERT_TRUE(grid->GetCellRect(19, 1, rect));
    EXPECT_EQ(grid->GetCellFromPt({rect.left(), rect.bottom() + 3}), CCellID());
}

}  // namespace
}  // namespace sg::grid
