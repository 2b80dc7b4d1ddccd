#include "grid/cell_selection.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace sg::grid {
namespace {

using Plain = std::set<std::pair<int, int>>;

Plain plainOf(const CellSelection& selection) {
    Plain cells;
    selection.ForEachSpan([&](int row, int first, int last) {
        for (int column = first; column <= last; ++column)
            EXPECT_TRUE(cells.emplace(row, column).second) << "twice: " << row << "," << column;
    });
    return cells;
}

// Moves the cells of a set; those that go nowhere are dropped.
template <class Move>
Plain moved(const Plain& cells, const Move& move) {
    Plain result;
    for (const auto& [row, column] : cells) {
        std::pair<int, int> place{row, column};
        if (move(place.first, place.second)) result.insert(place);
    }
    return result;
}

TEST(CellSelection, HoldsWhatASetOfCellsHolds) {
    std::mt19937 random(3);
    const auto below = [&](int end) { return int(random() % unsigned(end)); };
    CellSelection selection;
    Plain plain;
    for (int step = 0; step < 3000; ++step) {
        const CCellRange range = CCellRange::Between({below(12), below(9)}, {below(12), below(9)});
        const int at = below(10), count = below(3) + 1;
        switch (below(8)) {
            case 0:
            case 1:
            case 2:
                selection.Add(range);
                for (int row = range.minRow; row <= range.maxRow; ++row) {
                    for (int column = range.minCol; column <= range.maxCol; ++column)
                        plain.emplace(row, column);
                }
                break;
            case 3:
                selection.Remove(range);
                std::erase_if(plain, [&](const auto& cell) {
                    return range.Contains({cell.first, cell.second});
                });
                break;
            case 4:
                selection.InsertRows(at, count);
                plain = moved(plain,
                              [&](int& row, int&) { return row += row >= at ? count : 0, true; });
                break;
            case 5:
                selection.EraseRows(at, count);
                plain = moved(plain, [&](int& row, int&) {
                    if (row >= at && row < at + count) return false;
                    if (row >= at) row -= count;
                    return true;
                });
                break;
            case 6:
                selection.InsertColumn(at);
                plain = moved(
                    plain, [&](int&, int& column) { return column += column >= at ? 1 : 0, true; });
                break;
            default:
                selection.EraseColumn(at);
                plain = moved(plain, [&](int&, int& column) {
                    if (column == at) return false;
                    if (column > at) --column;
                    return true;
                });
                break;
        }
        ASSERT_EQ(plainOf(selection), plain) << step;
        ASSERT_EQ(selection.Count(), int64_t(plain.size()));
        ASSERT_EQ(selection.IsEmpty(), plain.empty());
        const CCellID cell{below(12), below(9)};
        ASSERT_EQ(selection.Contains(cell), plain.count({cell.row, cell.col}) == 1);
        // Rows and columns must not run away from those that are looked at.
        if (!plain.empty() && (plain.rbegin()->first > 30 || selection.Bounds().maxCol > 30)) {
            selection.Clear();
            plain.clear();
        }
    }
}

TEST(CellSelection, FollowsRowsThatChangePlaces) {
    CellSelection selection;
    selection.Add({1, 0, 1, 0});
    selection.Add({3, 2, 3, 4});
    selection.Add({9, 1, 9, 1});
    selection.PermuteRows(1, {3, 2, 1});
    EXPECT_EQ(plainOf(selection), (Plain{{1, 2}, {1, 3}, {1, 4}, {3, 0}, {9, 1}}));
}

}  // namespace
}  // namespace sg::grid
