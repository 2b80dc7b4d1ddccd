#include "grid/tree_column.h"

#include <algorithm>

#include "grid/grid_ctrl.h"
#include "grid/tree_cell.h"

// How a tree is set up, and how branches come and go.
namespace sg::grid {

CTreeColumn::~CTreeColumn() = default;

CGridTreeCellBase* CTreeColumn::CellAt(int row) const {
    CGridCellBase* const cell = grid_ == nullptr ? nullptr : grid_->GetCell(row, column_);
    return cell == nullptr ? nullptr : cell->AsTreeCell();
}

bool CTreeColumn::IsTreeRow(int row) const {
    return row >= fixedRows_ && row < totalRows_ && CellAt(row) != nullptr;
}

void CTreeColumn::MakeTreeCell(int row, uint8_t levelAndHide, const CGridTreeCellBase* like) {
    const GridCellClass& type =
        cellClass_ != nullptr ? *cellClass_ : gridCellClass<CGridTreeCell>();
    grid_->ReplaceCell(row, column_, type.create());
    CGridTreeCellBase* const cell = CellAt(row);
    if (cell == nullptr) return;
    cell->SetTree(this);
    if (like != nullptr) cell->CopyLook(*like);
    cell->SetLevelAndHide(levelAndHide);
}

bool CTreeColumn::TreeSetup(CGridCtrl& grid, int column, int rowCount, int fixedRows,
                            std::span<const uint8_t> levels, bool showLines, bool showImages,
                            const GridCellClass* cellClass) {
    if (cellClass != nullptr && cellClass->create()->AsTreeCell() == nullptr) return false;
    if (column < 0 || column >= grid.GetColumnCount() || fixedRows < 0 || rowCount < fixedRows) {
        return false;
    }
    if (!grid.SetRowCount(rowCount) || !grid.SetFixedRowCount(fixedRows)) return false;
    grid_ = &grid;
    column_ = column;
    cellClass_ = cellClass;
    treeLines_ = showLines;
    treeImages_ = showImages;
    fixedRows_ = fixedRows;
    totalRows_ = rowCount;
    for (int row = fixedRows; row < rowCount; ++row) {
        const size_t i = size_t(row - fixedRows);
        const uint8_t level = i < levels.size() ? levels[i] & kLevels : 1;
        MakeTreeCell(row, level | kShown, nullptr);
    }
    allowDraw_ = true;
    RefreshRows();
    return true;
}

int CTreeColumn::InsertTreeBranch(std::span<const uint8_t> levels, int before, bool redraw) {
    if (grid_ == nullptr || column_ < 0 || levels.empty() || grid_->isVirtual_) return -1;
    const int count = int(levels.size()), total = totalRows_;
    int first = before < 0 || before >= total ? total : before;
    first = std::max(first, fixedRows_);
    allowDraw_ = false;
    // The cell moves with its row, but stays where it is in memory.
    const CGridTreeCellBase* const last = total > fixedRows_ ? CellAt(total - 1) : nullptr;
    if (!grid_->InsertRowsAt(first, count)) {
        allowDraw_ = true;
        return -1;
    }
    totalRows_ = total + count;
    for (int i = 0; i < count; ++i)
        MakeTreeCell(first + i, (levels[size_t(i)] & kLevels) | kShown, last);
    for (int row = first + count; row < totalRows_; ++row) {
        if (CGridTreeCellBase* const cell = CellAt(row)) cell->SetCoords(row, column_);
    }
    allowDraw_ = redraw;
    grid_->Restructured();
    RefreshRows();
    allowDraw_ = true;
    return first;
}

int CTreeColumn::DeleteTreeBranch(int row, bool redraw) {
    if (!IsTreeRow(row) || grid_->isVirtual_) return 0;
    const int level = GetLevel(row);
    int end = row + 1;
    while (end < totalRows_ && GetLevel(end) > level)
        ++end;
    allowDraw_ = false;
    grid_->EraseRowsAt(row, end - row);
    for (int below = row; below < totalRows_; ++below) {
        if (CGridTreeCellBase* const cell = CellAt(below)) cell->SetCoords(below, column_);
    }
    allowDraw_ = redraw;
    RefreshRows();
    allowDraw_ = true;
    return end - row;
}

// Rows that come into the tree in another way have level 0.
void CTreeColumn::RowsCame(int row, int count) {
    if (totalRows_ < 0) return;
    if (row < fixedRows_) fixedRows_ += count;
    if (row < totalRows_) totalRows_ += count;
}

void CTreeColumn::RowsWent(int row, int count) {
    if (totalRows_ < 0) return;
    const auto gone = [&](int end) { return std::clamp(end - row, 0, count); };
    const int fixed = gone(fixedRows_), total = gone(totalRows_);
    fixedRows_ -= fixed;
    totalRows_ -= total;
}

void CTreeColumn::ColumnCame(int column) {
    if (column_ >= column) ++column_;
}

void CTreeColumn::ColumnWent(int column) {
    if (column_ == column) Forget();
    if (column_ > column) --column_;
}

void CTreeColumn::Forget() {
    column_ = fixedRows_ = totalRows_ = -1;
    allowDraw_ = false;
    Touch();
}

}  // namespace sg::grid
