#include <cwchar>
#include <utility>
#include <vector>

#include "base/text.h"
#include "grid/grid_ctrl.h"

// Sorting.
namespace sg::grid {
namespace {

// An in-place quick sort of rows low to high, which asks for cells and swaps rows by their numbers.
// The smaller part is sorted first, so that the depth stays small whatever the order was.
template <class Cell, class Before, class Swap>
void quickSort(int low, int high, const Cell& cell, const Before& isBefore, const Swap& swapRows) {
    while (low < high) {
        int i = low, j = high;
        const auto* const pivot = cell(low + (high - low) / 2);
        while (i <= j) {
            // A comparison that contradicts itself must not lead out of the rows.
            while (i < high && isBefore(*cell(i), *pivot))
                ++i;
            while (j > low && isBefore(*pivot, *cell(j)))
                --j;
            if (i > j) break;
            if (i != j) swapRows(i, j);
            ++i;
            --j;
        }
        if (j - low < high - i) {
            quickSort(low, j, cell, isBefore, swapRows);
            low = i;
        } else {
            quickSort(i, high, cell, isBefore, swapRows);
            high = j;
        }
    }
}

}  // namespace

int CGridCtrl::CompareTexts(const CGridCellBase& a, const CGridCellBase& b, intptr_t) {
    const std::wstring &first = a.GetText(), &second = b.GetText();
    const size_t shorter = std::min(first.size(), second.size());
    for (size_t i = 0; i < shorter; ++i) {
        if (first[i] == second[i]) continue;
        const wchar_t x = toLower(first[i]), y = toLower(second[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    if (first.size() != second.size()) return first.size() < second.size() ? -1 : 1;
    return first.compare(second);
}

int CGridCtrl::CompareNumbers(const CGridCellBase& a, const CGridCellBase& b, intptr_t) {
    const double first = std::wcstod(a.GetText().c_str(), nullptr);
    const double second = std::wcstod(b.GetText().c_str(), nullptr);
    return first < second ? -1 : second < first ? 1 : 0;
}

bool CGridCtrl::SortItems(GridCompare compare, int column, bool ascending, intptr_t data) {
    return SortItems(compare, column, ascending, data, fixedRows_, GetRowCount() - 1);
}

bool CGridCtrl::SortItems(GridCompare compare, int column, bool ascending, intptr_t data, int low,
                          int high) {
    EndEditing();
    if (isVirtual_ || column < 0 || column >= GetColumnCount() || high >= GetRowCount())
        return false;
    low = std::max(low, fixedRows_);
    for (const CCellRange& block : blocks_) {
        if (block.maxRow > block.minRow && block.maxRow >= low && block.minRow <= high)
            return false;
    }
    if (low >= high) return true;
    const size_t stored = size_t(columnOrder_[size_t(column)]);
    std::vector<int> origin(size_t(high - low + 1));
    for (size_t i = 0; i < origin.size(); ++i)
        origin[i] = low + int(i);
    quickSort(
        low, high, [&](int row) { return rows_[size_t(row)][stored].get(); },
        [&](const CGridCellBase& a, const CGridCellBase& b) {
            return ascending ? compare(a, b, data) < 0 : compare(a, b, data) > 0;
        },
        [&](int a, int b) {
            std::swap(rows_[size_t(a)], rows_[size_t(b)]);
            std::swap(origin[size_t(a - low)], origin[size_t(b - low)]);
            rowHeights_.Swap(a, b);
        });
    FollowRows(low, origin);
    return true;
}

// Focus, selection and the blocks within single rows go with their rows.
void CGridCtrl::FollowRows(int low, const std::vector<int>& origin) {
    std::vector<int> place(origin.size());
    for (size_t i = 0; i < origin.size(); ++i)
        place[size_t(origin[i] - low)] = low + int(i);
    const auto moved = [&](int row) {
        const bool isSorted = row >= low && size_t(row - low) < place.size();
        return isSorted ? place[size_t(row - low)] : row;
    };
    selection_.PermuteRows(low, origin);
    for (CCellID* const id : {&focusCell_, &selectionStart_})
        id->row = moved(id->row);
    for (CCellRange& block : blocks_) {
        if (block.minRow != block.maxRow) continue;
        block.minRow = block.maxRow = moved(block.minRow);
        MarkBlock(block, true);
    }
    Restructured();
}

}  // namespace sg::grid
