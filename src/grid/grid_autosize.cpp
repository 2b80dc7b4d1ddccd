#include <algorithm>
#include <cmath>

#include "grid/grid_ctrl.h"

// Columns that fit what is in them.
namespace sg::grid {

bool CGridCtrl::AutoSizeColumn(int column, int style, bool resetScroll) {
    if (column < 0 || column >= GetColumnCount()) return false;
    if (style == 0) style = autoSizeStyle_;
    const bool isFixedColumn = column < fixedColumns_;
    int widest = 0;
    for (int row = 0; row < GetRowCount(); ++row) {
        const bool isFixed = isFixedColumn || row < fixedRows_;
        if ((style & (isFixed ? kSizeByFixed : kSizeByPlain)) == 0) continue;
        const CGridCellBase& cell = *GetCell(row, column);
        // A block over several columns has their room.
        const CCellRange block = cell.GetMergeRange();
        if (cell.IsMergedIntoOther() || block.maxCol > block.minCol) continue;
        widest = std::max(widest, cell.GetCellExtent().width());
    }
    // One pixel for the line, and two for the edge of a heading. A column without a cell that
    // counts stays as it is.
    if (widest > 0) columnWidths_.Set(column, widest + 3);
    if (resetScroll) ResetScrollBars();
    NeedLayout();
    return true;
}

void CGridCtrl::AutoSizeColumns(int style, bool resetScroll) {
    for (int column = 0; column < GetColumnCount(); ++column) {
        if (columnWidths_[column] > 0) AutoSizeColumn(column, style, false);
    }
    if (resetScroll) ResetScrollBars();
}

void CGridCtrl::ExpandToFit() {
    ResetScrollBars();
    const int64_t total = columnWidths_.Total();
    const int room = viewport()->width();
    if (total <= 0 || room <= 0) return;
    // Each column ends where its share of the room does, so that no pixel is left over.
    int64_t before = 0;
    int end = 0;
    for (int column = 0; column < GetColumnCount(); ++column) {
        const int width = columnWidths_[column];
        if (width == 0) continue;
        before += width;
        const int next = std::max(int(before * room / total), end + 1);
        columnWidths_.Set(column, next - end);
        end = next;
    }
    ResetScrollBars();
}

}  // namespace sg::grid
