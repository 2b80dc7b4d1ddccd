#include <QAbstractItemView>
#include <QComboBox>

#include "grid/combo_cell.h"
#include "grid/grid_fixture.h"
#include "grid/in_place_list.h"

namespace sg::grid {
namespace {

class EditTest : public GridTest {
  protected:
    void SetUp() override {
        GridTest::SetUp();
        grid->SetFocusCell(2, 2);
        grid->SetHandleTabKey(true);
        recorder.Take();
    }

    void Type(const char* text) { QTest::keyClicks(Editor(), QString::fromUtf8(text)); }
    void EditorKey(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(Editor(), Qt::Key(key), modifiers);
        Settle();
    }

    QComboBox* List() const { return grid->viewport()->findChild<QComboBox*>(); }

    CGridCellCombo& Combo(int row, int column, int style) {
        grid->SetCellType(row, column, gridCellClass<CGridCellCombo>());
        auto& cell = dynamic_cast<CGridCellCombo&>(*grid->GetCell(row, column));
        cell.SetOptions({L"No", L"Yes", L"Maybe"}, {0, -1});
        cell.SetStyle(style);
        return cell;
    }
};

TEST_F(EditTest, TheFirstCharacterTellsWhatBecomesOfTheText) {
    const struct {
        uint32_t character;
        const char* text;
        const char* selected;
        int caret;
    } starts[] = {
        {kEditByClick, "2:2", "", 3},
        {kEditByReturn, "2:2", "", 3},
        {kEditByBackspace, "2:", "", 2},
        {kEditByTab, "2:2", "2:2", 3},
        {32, "2:2", "2:2", 3},
        {L'x', "x", "", 1},
        {0x20AC, "€", "", 1},
    };
    for (const auto& start : starts) {
        grid->OnEditCell(2, 2, {-1, -1}, start.character);
        ASSERT_NE(Editor(), nullptr) << start.character;
        EXPECT_EQ(Editor()->text().toStdString(), start.text) << start.character;
        EXPECT_EQ(Editor()->selectedText().toStdString(), start.selected) << start.character;
        EXPECT_EQ(Editor()->cursorPosition(), start.caret) << start.character;
        EditorKey(Qt::Key_Escape);
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_EQ(Text(2, 2), "2:2");
    }
}

TEST_F(EditTest, KeysBeginAndEndAnEdit) {
    Key(Qt::Key_A);
    Type("bc");
    EditorKey(Qt::Key_Return);
    EXPECT_EQ(Text(2, 2), "abc");
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2", "end 2,2"}));
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{2, 2}));
    EXPECT_TRUE(grid->hasFocus());
    EXPECT_TRUE(grid->GetModified());

    Key(Qt::Key_Return);
    Type("d");
    EditorKey(Qt::Key_Tab);
    EXPECT_EQ(Text(2, 2), "abcd");
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{2, 3}));

    Key(Qt::Key_Backspace);
    EditorKey(Qt::Key_Down);
    EXPECT_EQ(Text(2, 3), "2:");
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{3, 3}));

    Key(Qt::Key_F2);
    // As after a click, arrows move in the text.
    EditorKey(Qt::Key_Left);
    ASSERT_NE(Editor(), nullptr);
    Type("-");
    EditorKey(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(Text(3, 3), "3:-3");
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{2, 3}));
}

TEST_F(EditTest, EscLeavesTheTextAndSaysNothing) {
    Key(Qt::Key_X);
    recorder.Take();
    EditorKey(Qt::Key_Escape);
    EXPECT_EQ(Text(2, 2), "2:2");
    EXPECT_EQ(recorder.Take(), Heard());
    EXPECT_FALSE(grid->GetModified());
}

TEST_F(EditTest, NothingIsEditedThatMustNotBe) {
    grid->SetItemState(2, 2, GVIS_READONLY);
    Key(Qt::Key_X);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(recorder.Take(), Heard());
    grid->SetItemState(2, 2, 0);
    grid->SetEditable(false);
    Key(Qt::Key_F2);
    EXPECT_EQ(Editor(), nullptr);
    grid->SetEditable(true);
    recorder.allowsBegin = false;
    Key(Qt::Key_X);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2"}));
    EXPECT_FALSE(grid->SetItemTextWithNotify(2, 2, L"x"));
    EXPECT_EQ(Text(2, 2), "2:2");
    grid->SetRowHeight(2, 0);
    recorder.allowsBegin = true;
    grid->OnEditCell(2, 2, {-1, -1}, L'x');
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(EditTest, ARefusedTextIsTakenBack) {
    recorder.allowsEnd = false;
    std::string seen;
    recorder.onEnd = [&] { seen = Text(2, 2); };
    Key(Qt::Key_X);
    EditorKey(Qt::Key_Return);
    EXPECT_EQ(seen, "x");
    EXPECT_EQ(Text(2, 2), "2:2");
    EXPECT_FALSE(grid->GetCell(2, 2)->IsModified());
    EXPECT_FALSE(grid->SetItemTextWithNotify(2, 2, L"y"));
    EXPECT_EQ(seen, "y");
    EXPECT_EQ(Text(2, 2), "2:2");
    EXPECT_TRUE(grid->SetItemTextWithNotify(2, 2, L"2:2"));  // nothing to refuse
}

// A cell that takes nothing but digits.
class DigitCell : public CGridCell {
  public:
    bool ValidateEdit(const std::wstring& text) override {
        return text.find_first_not_of(L"0123456789") == std::wstring::npos;
    }
};

TEST_F(EditTest, ACellCanRefuseText) {
    grid->SetCellType(2, 2, gridCellClass<DigitCell>());
    grid->SetItemText(2, 2, L"5");
    Key(Qt::Key_X);
    recorder.Take();
    EditorKey(Qt::Key_Return);
    EXPECT_EQ(Text(2, 2), "5");
    EXPECT_EQ(recorder.Take(), Heard());
    EXPECT_TRUE(grid->SetItemTextWithNotify(2, 2, L"77"));
    EXPECT_EQ(Text(2, 2), "77");
}

TEST_F(EditTest, LosingTheFocusEndsTheEditOnce) {
    QLineEdit other;
    other.show();
    Key(Qt::Key_X);
    QApplication::setActiveWindow(&other);
    other.setFocus();
    Settle();
    EXPECT_EQ(Text(2, 2), "x");
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2", "end 2,2"}));
    EXPECT_EQ(Editor(), nullptr);
    QApplication::setActiveWindow(grid.get());
    grid->setFocus();
    // So does scrolling, which would leave the editor behind.
    Key(Qt::Key_Y);
    QWheelEvent turn({50, 50}, grid->viewport()->mapToGlobal(QPoint(50, 50)), {}, {0, -120},
                     Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(grid->viewport(), &turn);
    EXPECT_EQ(Text(2, 2), "y");
}

TEST_F(EditTest, TheEditorGrowsWithItsText) {
    Key(Qt::Key_X);
    const int before = Editor()->width();
    Type("a text that is much wider than the cell is");
    EXPECT_GT(Editor()->width(), before);
    Type("a text that is much wider than the whole grid can ever be, which ends at the edge of it");
    EXPECT_LE(Editor()->geometry().right(), grid->viewport()->rect().right());
    EditorKey(Qt::Key_Escape);
}

TEST_F(EditTest, WhatTheEditorCannotHoldStays) {
    const std::wstring odd =
        L"line\nline" + std::wstring(1, wchar_t(0xD800)) + std::wstring(40'000, L'x');
    grid->SetItemText(2, 2, odd);
    Key(Qt::Key_F2);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->text().size(), qsizetype(odd.size()));
    EditorKey(Qt::Key_Return);
    EXPECT_EQ(grid->GetItemText(2, 2), odd);
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2"}));
}

TEST_F(EditTest, RowsMayGoWhileTheOwnerIsAsked) {
    recorder.onBegin = [&] { grid->DeleteRow(2); };
    Key(Qt::Key_X);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(Text(2, 2), "3:2");

    // The row above goes: the text goes back where it came from.
    recorder.onBegin = nullptr;
    recorder.onEnd = [&] { grid->DeleteRow(1); };
    recorder.allowsEnd = false;
    Key(Qt::Key_X);
    EditorKey(Qt::Key_Return);
    EXPECT_EQ(Text(1, 2), "3:2");
    EXPECT_EQ(Text(2, 2), "4:2");

    recorder.onEnd = [&] { grid->DeleteAllItems(); };
    EXPECT_FALSE(grid->SetItemTextWithNotify(1, 2, L"x"));
    EXPECT_EQ(grid->GetRowCount(), 0);
}

TEST_F(EditTest, RowsMayMoveUnderAnOpenEditor) {
    Key(Qt::Key_X);
    grid->InsertRow(L"", 1);
    EditorKey(Qt::Key_Return);
    EXPECT_EQ(Text(3, 2), "x");
    EXPECT_EQ(Text(2, 2), "1:2");
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2", "end 3,2"}));

    Key(Qt::Key_X);
    grid->DeleteRow(3);
    Settle();
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(Text(3, 2), "3:2");
}

TEST_F(EditTest, RowsMayGoWhenAnOperationEndsTheEdit) {
    const std::function<bool()> operations[] = {
        [&] { return grid->MergeCells(8, 1, 9, 2); },
        [&] { return grid->SetFixedRowCount(10); },
        [&] { return grid->SetFixedColumnCount(4); },
        [&] { return grid->SortItems(&CGridCtrl::CompareTexts, 4, true); },
        [&] { return grid->SortItems(&CGridCtrl::CompareTexts, 1, true, 0, 1, 9); },
        [&] {
            return grid->SetColumnOrder({5, 4, 3, 2, 1, 0});
        },
    };
    recorder.onEnd = [&] {
        grid->SetRowCount(4);
        grid->SetColumnCount(3);
    };
    for (const auto& operation : operations) {
        Fill(20, 6, 1, 1);
        grid->SetFocusCell(2, 2);
        Key(Qt::Key_X);
        EXPECT_FALSE(operation());
        EXPECT_EQ(grid->GetRowCount(), 4);
        EXPECT_EQ(Text(2, 2), "x");
    }
}

TEST_F(EditTest, TheFocusStaysInTheGridWhenTheEditedColumnGoes) {
    Key(Qt::Key_X);
    recorder.Take();
    grid->SetColumnCount(2);
    EXPECT_TRUE(grid->hasFocus());
    EXPECT_EQ(recorder.Take(), Heard());
}

TEST_F(EditTest, TheGridMayGoWhileAnEditorIsOpen) {
    Key(Qt::Key_X);
    recorder.Take();
    grid.reset();
    Settle();
    EXPECT_EQ(recorder.Take(), Heard());
}

TEST_F(EditTest, AListTakesItsOptionsAlone) {
    Combo(2, 2, kListOnly);
    Key(Qt::Key_Return);
    ASSERT_NE(List(), nullptr);
    EXPECT_EQ(List()->currentIndex(), -1);  // the text is none of the options
    EXPECT_FALSE(List()->isEditable());
    QTest::keyClick(List(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Text(2, 2), "2:2");
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2"}));

    Key(Qt::Key_Y);  // the option that begins so
    QTest::keyClick(List(), Qt::Key_Tab);
    Settle();
    EXPECT_EQ(Text(2, 2), "Yes");
    EXPECT_EQ(recorder.Take(), (Heard{"begin 2,2", "end 2,2", "changing 2,2", "changed 2,3"}));
    EXPECT_EQ(List(), nullptr);

    // Closed, arrows belong to the grid.
    grid->SetFocusCell(2, 2);
    Key(Qt::Key_F2);
    QTest::keyClick(List(), Qt::Key_Down);
    Settle();
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{3, 2}));
    EXPECT_EQ(Text(2, 2), "Yes");
}

TEST_F(EditTest, AnOpenListIsChosenFrom) {
    Combo(2, 2, kListOnly);
    Key(Qt::Key_F2);
    QTest::keyClick(List(), Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(List()->view()->isVisible());
    QTest::keyClick(List()->view(), Qt::Key_Down);
    QTest::keyClick(List()->view(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Text(2, 2), "Yes");
    EXPECT_EQ(List(), nullptr);
}

TEST_F(EditTest, EscInAnOpenListEndsTheEdit) {
    Combo(2, 2, kListOnly);
    const std::string before = Text(2, 2);
    Key(Qt::Key_F2);
    QTest::keyClick(List(), Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(List()->view(), Qt::Key_Down);
    recorder.Take();
    QTest::keyClick(List()->view(), Qt::Key_Escape);
    Settle();
    EXPECT_EQ(List(), nullptr);
    EXPECT_EQ(Text(2, 2), before);
    EXPECT_EQ(recorder.Take(), Heard());
    EXPECT_EQ(grid->window()->focusWidget(), grid.get());
}

TEST_F(EditTest, AnEditableListTakesAnyText) {
    Combo(2, 2, kListEditable);
    Key(Qt::Key_Q);
    ASSERT_NE(List(), nullptr);
    QTest::keyClicks(List()->lineEdit(), QStringLiteral("uite"));
    QTest::keyClick(List(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Text(2, 2), "quite");
    Key(Qt::Key_Q);
    QTest::keyClick(List(), Qt::Key_Escape);
    Settle();
    EXPECT_EQ(Text(2, 2), "quite");
}

}  // namespace
}  // namespace sg::grid
