#pragma once

#include <algorithm>
#include <cstdint>

namespace sg::grid {

// A cell's place. Columns count as they are displayed.
struct CCellID {
    int row = -1;
    int col = -1;

    bool IsValid() const { return row >= 0 && col >= 0; }
    bool operator==(const CCellID&) const = default;
};

// A block of cells, ends included; -1 in all four is none.
struct CCellRange {
    int minRow = -1;
    int minCol = -1;
    int maxRow = -1;
    int maxCol = -1;

    bool IsValid() const {
        return minRow >= 0 && minCol >= 0 && maxRow >= minRow && maxCol >= minCol;
    }
    int64_t Count() const {
        return IsValid() ? int64_t(maxRow - minRow + 1) * (maxCol - minCol + 1) : 0;
    }
    bool Contains(CCellID cell) const {
        return cell.row >= minRow && cell.row <= maxRow && cell.col >= minCol && cell.col <= maxCol;
    }
    bool Intersects(const CCellRange& other) const {
        return minRow <= other.maxRow && maxRow >= other.minRow && minCol <= other.maxCol &&
               maxCol >= other.minCol;
    }
    CCellID TopLeft() const { return {minRow, minCol}; }
    bool operator==(const CCellRange&) const = default;

    // The block between two corners, whichever they are.
    static CCellRange Between(CCellID a, CCellID b) {
        return {std::min(a.row, b.row), std::min(a.col, b.col), std::max(a.row, b.row),
                std::max(a.col, b.col)};
    }
};

}  // namespace sg::grid
