#include "grid/check_cell.h"

#include <gmock/gmock.h>

#include "grid/grid_fixture.h"

namespace sg::grid {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CheckCellTest : public GridTest {
  protected:
    void SetUp() override {
        GridTest::SetUp();
        grid->SetCellType(2, 2, gridCellClass<CGridCheckCell>());
        grid->SetItemText(2, 2, L"0");
    }
};

TEST_F(CheckCellTest, AClickOnTheBoxSwitchesIt) {
    Click(2, 2);
    EXPECT_EQ(Text(2, 2), "1") << "also the click that brings the focus";
    Click(2, 2);
    EXPECT_EQ(Text(2, 2), "0");
    // Beside the box the first click brings the focus, the next one is an edit.
    QRect rect;
    ASSERT_TRUE(grid->GetCellRect(2, 2, rect));
    grid->SetFocusCell(3, 3);
    for (const char* const text : {"0", "1"}) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, rect.topLeft() + QPoint(2, 2));
        EXPECT_EQ(Text(2, 2), text);
    }
}

TEST_F(CheckCellTest, KeysSwitchAndSet) {
    grid->SetFocusCell(2, 2);
    const struct {
        int key;
        const char* text;
    } cases[] = {{Qt::Key_Space, "1"}, {Qt::Key_Return, "0"}, {Qt::Key_F2, "1"},
                 {Qt::Key_1, "1"},     {Qt::Key_0, "0"},      {Qt::Key_X, "0"},
                 {Qt::Key_Delete, "0"}};
    for (const auto& one : cases) {
        Key(one.key);
        EXPECT_EQ(Text(2, 2), one.text) << one.key;
        EXPECT_EQ(Editor(), nullptr);
    }
    EXPECT_TRUE(grid->GetModified());
}

TEST_F(CheckCellTest, TheOwnerMayRefuseBeforeAndAfter) {
    grid->SetFocusCell(2, 2);
    recorder.allowsBegin = false;
    recorder.Take();
    Key(Qt::Key_Space);
    Click(2, 2);
    EXPECT_EQ(Text(2, 2), "0");
    recorder.allowsBegin = true;
    recorder.allowsEnd = false;
    recorder.Take();
    Key(Qt::Key_Space);
    EXPECT_EQ(Text(2, 2), "0");
    EXPECT_THAT(recorder.Take(), ElementsAre("begin 2,2", "end 2,2"));
    grid->SetItemState(2, 2, GVIS_READONLY);
    Key(Qt::Key_Space);
    EXPECT_THAT(recorder.Take(), IsEmpty());
}

TEST_F(CheckCellTest, OnlyItsOwnTextsAreTaken) {
    for (const wchar_t* const text : {L"", L"2", L"on"})
        EXPECT_FALSE(grid->SetItemTextWithNotify(2, 2, text));
    EXPECT_EQ(Text(2, 2), "0");
    EXPECT_TRUE(grid->SetItemTextWithNotify(2, 2, L"1"));
}

// Rows may go while the owner hears of the switch.
TEST_F(CheckCellTest, ItMayBeDeletedMeanwhile) {
    recorder.onEnd = [this] { grid->DeleteRow(2); };
    grid->SetFocusCell(2, 2);
    Key(Qt::Key_Space);
    EXPECT_EQ(grid->GetRowCount(), 19);
    EXPECT_EQ(Text(2, 2), "3:2");
}

}  // namespace
}  // namespace sg::grid
