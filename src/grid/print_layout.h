#pragma once

#include <QFont>
#include <QRect>

#include <vector>

namespace sg::grid {

// How a grid is laid out on pages. Everything is in the grid's pixels, which `scale` makes into
// those of the printer; columns that do not fit beside each other go on to further pages.
struct PrintLayout {
    QRect page;  // that can be printed on
    int dotsPerInchX = 0, dotsPerInchY = 0;
    double scale = 1;
    QFont font;  // in the grid's pixels
    QRect header, cells, footer;
    std::vector<std::vector<int>> rowPages;     // the rows on each page, one below the other
    std::vector<std::vector<int>> columnPages;  // the columns on each, side by side

    int PageCount() const { return int(rowPages.size() * columnPages.size()); }
    // Of page `page` (from 0): all rows of the first columns come first.
    const std::vector<int>& RowsOf(int page) const {
        return rowPages[size_t(page) % rowPages.size()];
    }
    const std::vector<int>& ColumnsOf(int page) const {
        return columnPages[size_t(page) / rowPages.size()];
    }
};

}  // namespace sg::grid
