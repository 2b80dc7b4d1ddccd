#include <algorithm>
#include <random>

#include "grid/grid_fixture.h"

namespace sg::grid {
namespace {

class SortTest : public GridTest {
  protected:
    void SetColumn(int column, const std::vector<std::wstring>& texts) {
        grid->SetRowCount(int(texts.size()) + 1);
        for (size_t i = 0; i < texts.size(); ++i)
            grid->SetItemText(int(i) + 1, column, texts[i]);
    }
};

TEST_F(SortTest, SortsRowsOfAnyOrder) {
    std::mt19937 random(11);
    for (const int count : {0, 1, 2, 3, 7, 64, 1000}) {
        for (const int kinds : {1, 2, 1000}) {
            std::vector<std::wstring> texts;
            for (int i = 0; i < count; ++i)
                texts.push_back(std::to_wstring(100'000 + int(random() % unsigned(kinds))));
            SetColumn(2, texts);
            ASSERT_TRUE(grid->SortItems(CGridCtrl::CompareTexts, 2, true));
            std::sort(texts.begin(), texts.end());
            for (int i = 0; i < count; ++i)
                ASSERT_EQ(grid->GetItemText(i + 1, 2), texts[size_t(i)]) << count << " " << kinds;
            ASSERT_TRUE(grid->SortItems(CGridCtrl::CompareTexts, 2, false));
            for (int i = 0; i < count; ++i)
                ASSERT_EQ(grid->GetItemText(count - i, 2), texts[size_t(i)])
                    << count << " " << kinds;
        }
    }
}

TEST_F(SortTest, WholeRowsMove) {
    SetColumn(2, {L"c", L"a", L"B"});
    grid->SetRowHeight(2, 50);
    grid->SetFocusCell(1, 3);
    grid->SetSelectedRange({2, 1, 2, 2});
    grid->MergeCells(3, 4, 3, 5);
    ASSERT_TRUE(grid->SortItems(CGridCtrl::CompareTexts, 2, true));
    EXPECT_EQ(Column(2), "a B c");
    EXPECT_EQ(Column(0, 0), "0:0 2:0 3:0 1:0");
    EXPECT_EQ(grid->GetRowHeight(1), 50);
    EXPECT_EQ(grid->GetFocusCell(), (CCellID{3, 3}));
    EXPECT_EQ(grid->GetSelectedCellRange(), (CCellRange{1, 1, 1, 2}));
    EXPECT_EQ(grid->GetCell(2, 4)->GetMergeRange(), (CCellRange{2, 4, 2, 5}));
    EXPECT_EQ(grid->GetCell(2, 5)->GetMergeCell(), (CCellID{2, 4}));
}

TEST_F(SortTest, PartsAndRefusals) {
    SetColumn(1, {L"10", L"9", L"8", L"2"});
    EXPECT_FALSE(grid->SortItems(CGridCtrl::CompareTexts, 6, true));
    EXPECT_FALSE(grid->SortItems(CGridCtrl::CompareTexts, -1, true));
    EXPECT_FALSE(grid->SortItems(CGridCtrl::CompareTexts, 1, true, 0, 1, 5));
    ASSERT_TRUE(grid->SortItems(CGridCtrl::CompareTexts, 1, true, 0, 0, 3));
    EXPECT_EQ(Column(1), "10 8 9 2");
    ASSERT_TRUE(grid->SortItems(CGridCtrl::CompareNumbers, 1, true));
    EXPECT_EQ(Column(1), "2 8 9 10");
    grid->MergeCells(1, 1, 2, 1);
    EXPECT_FALSE(grid->SortItems(CGridCtrl::CompareNumbers, 1, false));
    EXPECT_EQ(Column(1), "2 8 9 10");
}

TEST_F(SortTest, AComparisonThatContradictsItselfEnds) {
    SetColumn(1, std::vector<std::wstring>(500, L"x"));
    for (const int answer : {-1, 1}) {
        static int fixed;
        fixed = answer;
        const GridCompare compare = [](const CGridCellBase&, const CGridCellBase&, intptr_t) {
            return fixed;
        };
        EXPECT_TRUE(grid->SortItems(compare, 1, true));
    }
    EXPECT_EQ(grid->GetRowCount(), 501);
}

}  // namespace
}  // namespace sg::grid
