#include <array>

#include "grid/button_cell.h"
#include "grid/grid_fixture.h"

namespace sg::grid {
namespace {

class ButtonTest : public GridTest {
  protected:
    void SetUp() override {
        GridTest::SetUp();
        grid->SetColumnWidth(2, 201);
        QApplication::processEvents();
        cell = &Make(3, 2);
    }

    CGridBtnCell& Make(int row, int column) {
        grid->SetCellType(row, column, gridCellClass<CGridBtnCell>());
        return dynamic_cast<CGridBtnCell&>(*grid->GetCell(row, column));
    }

    // Where the control stands, in the viewport.
    QPoint Place(size_t control) const {
        QRect rect;
        EXPECT_TRUE(grid->GetCellRect(3, 2, rect));
        std::array<QRect, ButtonBlock::kCapacity> rects;
        const QRect area(rect.topLeft() + QPoint(1, 0), rect.size() - QSize(1, 0));
        EXPECT_TRUE(cell->Buttons().CalcControlRects(rects, area, 1));
        return rects[control].center();
    }

    void ClickControl(size_t control) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, Place(control));
    }

    std::string Checked() const {
        std::string marks;
        for (size_t i = 0; i < cell->Buttons().Count(); ++i)
            marks += (cell->Buttons()[i].state & DFCS_CHECKED) != 0 ? 'x' : '-';
        return marks;
    }

    CGridBtnCell* cell = nullptr;
};

TEST_F(ButtonTest, ControlsShareTheirCell) {
    struct Case {
        const char* name;
        std::vector<CellControl> controls;
        std::vector<QRect> rects;
    };
    const QRect area(10, 5, 100, 20);
    const Case cases[] = {
        {"a push button alone fills the cell", {{}}, {area}},
        {"a check box alone is small", {{.state = DFCS_CHECKED}}, {{10, 8, 14, 14}}},
        {"a given width holds", {{.width = 30}}, {{10, 5, 30, 20}}},
        {"arrows share what is left",
         {{.type = DFC_SCROLL, .state = 0, .width = 40},
          {.type = DFC_SCROLL, .state = 0},
          {.type = DFC_SCROLL, .state = 0}},
         {{10, 5, 40, 20}, {50, 5, 30, 20}, {80, 5, 30, 20}}},
        {"a button with a kind is a square",
         {{.state = DFCS_BUTTONRADIO}, {.type = DFC_SCROLL, .state = 0}},
         {{10, 5, 20, 20}, {30, 5, 80, 20}}},
        {"order by alignment",
         {{.width = 10, .align = 2}, {.width = 20, .align = 1}, {.width = 30, .align = 1}},
         {{60, 5, 10, 20}, {10, 5, 20, 20}, {30, 5, 30, 20}}},
        {"the last one has no room", {{.width = 60}, {.width = 41}}, {{10, 5, 60, 20}, {}}},
        {"no control", {}, {}},
    };
    for (const Case& one : cases) {
        ButtonBlock block;
        for (const CellControl& control : one.controls)
            block.Add(control);
        std::array<QRect, ButtonBlock::kCapacity> rects;
        ASSERT_TRUE(block.CalcControlRects(rects, area, 1)) << one.name;
        for (size_t i = 0; i < one.rects.size(); ++i)
            EXPECT_EQ(rects[i], one.rects[i]) << one.name << " " << i;
    }
}

TEST_F(ButtonTest, MoreControlsThanSixteenAreNotLaidOut) {
    for (int i = 0; i < 16; ++i)
        cell->Buttons().Add({.width = 5});
    std::array<QRect, ButtonBlock::kCapacity> rects;
    EXPECT_TRUE(cell->Buttons().CalcControlRects(rects, {0, 0, 100, 20}, 1));
    cell->Buttons().Add({});
    EXPECT_FALSE(cell->Buttons().CalcControlRects(rects, {0, 0, 100, 20}, 1));
    EXPECT_EQ(cell->Buttons().ControlAt({2, 2}, {0, 0, 100, 20}, 1), -1);
    grid->grab();
    Click(3, 2);
    Click(3, 2);
}

TEST_F(ButtonTest, ACheckBoxFlips) {
    cell->Buttons().Add({.state = DFCS_BUTTONCHECK});
    ClickControl(0);
    EXPECT_EQ(Checked(), "x");
    ClickControl(0);
    EXPECT_EQ(Checked(), "-");
    EXPECT_EQ(Editor(), nullptr);
    for (const std::string& heard : recorder.Take())
        EXPECT_EQ(heard.find("end"), std::string::npos) << heard;
}

TEST_F(ButtonTest, RadioButtonsExcludeEachOther) {
    for (int i = 0; i < 3; ++i)
        cell->Buttons().Add({.state = DFCS_BUTTONRADIO, .width = 30});
    for (int i = 0; i < 2; ++i)
        cell->Buttons().Add({.state = DFCS_BUTTONCHECK, .width = 30, .isMutuallyExclusive = true});
    ClickControl(0);
    ClickControl(3);
    EXPECT_EQ(Checked(), "x--x-");
    ClickControl(2);
    EXPECT_EQ(Checked(), "--xx-");
    ClickControl(4);
    EXPECT_EQ(Checked(), "--x-x");
    // Those that are no radio buttons stay pushed.
    EXPECT_NE(cell->Buttons()[4].state & DFCS_PUSHED, 0u);
    EXPECT_EQ(cell->Buttons()[3].state & DFCS_PUSHED, 0u);
    EXPECT_EQ(cell->Buttons()[2].state & DFCS_PUSHED, 0u);
}

TEST_F(ButtonTest, APushIsToldWhenItIsReleasedOnTheButton) {
    cell->Buttons().Add({.width = 60});
    cell->Buttons().Add({.state = DFCS_BUTTONPUSH | DFCS_INACTIVE, .width = 60});
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, Place(0));
    EXPECT_NE(cell->Buttons()[0].state & DFCS_PUSHED, 0u);
    EXPECT_EQ(cell->Buttons().GetLastPushed(), 0);
    recorder.Take();
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, Place(0));
    EXPECT_EQ(recorder.Take(), (Heard{"end 3,2", "click 3,2"}));
    EXPECT_EQ(cell->Buttons()[0].state & DFCS_PUSHED, 0u);

    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, Place(0));
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, Middle(5, 3));
    EXPECT_EQ(recorder.Take(), (Heard{"click 5,3"}));
    EXPECT_EQ(cell->Buttons()[0].state & DFCS_PUSHED, 0u);

    const uint32_t before = cell->Buttons()[1].state;
    ClickControl(1);
    EXPECT_EQ(cell->Buttons()[1].state, before);
}

TEST_F(ButtonTest, TheOwnerMayTakeTheCellAway) {
    cell->Buttons().Add({.width = 60});
    recorder.onEnd = [&] { grid->DeleteAllItems(); };
    const QPoint place = Place(0);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(grid->GetRowCount(), 0);
}

TEST_F(ButtonTest, KeysPressControls) {
    cell->Buttons().Add({.width = 60, .text = L"&Add"});
    cell->Buttons().Add({.state = DFCS_BUTTONCHECK, .width = 60, .text = L"A&&B &see"});
    grid->SetFocusCell(3, 2);
    Key(Qt::Key_S);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Checked() == "-x"; }));
    EXPECT_EQ(Editor(), nullptr);
    recorder.Take();
    Key(Qt::Key_A);
    EXPECT_NE(cell->Buttons()[0].state & DFCS_PUSHED, 0u);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return !recorder.heard.empty() && recorder.heard.back() == "end 3,2"; }));

    CGridBtnCell& alone = Make(4, 2);
    alone.Buttons().Add({.state = DFCS_BUTTONCHECK});
    grid->SetFocusCell(4, 2);
    Key(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return alone.Buttons()[0].state == DFCS_CHECKED; }));
    // The cell may be gone before the button comes up again.
    Key(Qt::Key_Space);
    grid->DeleteRow(4);
    QTest::qWait(250);
    EXPECT_EQ(Text(4, 2), "5:2");
}

TEST_F(ButtonTest, ACellThatIsTooLowTakesCharacters) {
    cell->Buttons().Add({.text = L"&Add"});
    cell->Buttons().Add({.text = L"&Drop"});
    grid->SetRowHeight(3, 1);
    grid->SetFocusCell(3, 2);
    Key(Qt::Key_Q);
    Key(Qt::Key_Space);
    EXPECT_EQ(recorder.Take().front(), "begin 3,2");
}

TEST_F(ButtonTest, TextBesideTheControlsIsEdited) {
    cell->Buttons().Add({.width = 60});
    grid->SetItemText(3, 2, L"text");
    grid->SetFocusCell(3, 2);
    Key(Qt::Key_Q);
    ASSERT_NE(Editor(), nullptr);
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(3, 2, rect));
    EXPECT_EQ(Editor()->x(), rect.left() + 61);
    QTest::keyClick(Editor(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Text(3, 2), "q");
}

TEST_F(ButtonTest, CellsShareWhatTheyDoNotHaveThemselves) {
    CGridBtnCell& other = Make(4, 2);
    other.Reset();
    CBtnDataBase& shared = grid->GetButtonData();
    shared.SetText(L"shared");
    shared.SetTextClr(gridColour(1, 2, 3));
    EXPECT_EQ(toUtf8(other.GetText()), "shared");
    EXPECT_EQ(other.GetTextClr(), gridColour(1, 2, 3));
    EXPECT_EQ(other.GetFormat(), 32804u);
    EXPECT_EQ(other.GetMarginY(), 3);
    other.SetText(L"own");
    other.SetTextClr(gridColour(4, 5, 6));
    EXPECT_EQ(toUtf8(other.GetText()), "own");
    EXPECT_EQ(toUtf8(shared.GetText()), "shared");
    EXPECT_EQ(other.GetTextClr(), gridColour(4, 5, 6));
}

}  // namespace
}  // namespace sg::grid
