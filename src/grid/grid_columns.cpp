#include <algorithm>
#include <new>
#include <numeric>

#include "grid/grid_ctrl.h"
#include "grid/tree_column.h"

// Columns: their order, formats, texts and names.
namespace sg::grid {

int CGridCtrl::InsertColumn(const std::wstring& title, uint32_t format, int before) {
    const int column = before == -1 ? GetColumnCount() : before;
    if (isVirtual_ || column < 0 || column > GetColumnCount()) return -1;
    if (GetRowCount() == 0 && !SetRowCount(1)) return -1;
    const int stored = int(columns_.size());
    try {
        columns_.push_back({format, title});
        columnOrder_.insert(columnOrder_.begin() + column, stored);
        columnWidths_.Insert(column, 1, GetDefaultCell(false, false).GetWidth());
        if (column < fixedColumns_) ++fixedColumns_;
        for (int row = 0; row < GetRowCount(); ++row)
            rows_[size_t(row)].push_back(CreateCell(row, column));
    } catch (const std::bad_alloc&) {
        for (Row& cells : rows_)
            cells.resize(std::min(cells.size(), size_t(stored)));
        columns_.resize(size_t(stored));
        columnOrder_.erase(columnOrder_.begin() + column);
        columnWidths_.Erase(column, 1);
        return -1;
    }
    selection_.InsertColumn(column);
    for (CCellID* const id : {&focusCell_, &selectionStart_, &pressedCell_}) {
        if (id->col >= column) ++id->col;
    }
    MoveBlocksForColumns(column, 1);
    tree_->ColumnCame(column);
    if (format != kPlainFormat) {
        for (int row = 0; row < GetRowCount(); ++row)
            GetCell(row, column)->SetFormat(format);
    }
    SetItemText(0, column, title);
    Restructured();
    return column;
}

bool CGridCtrl::DeleteColumn(int column) {
    if (isVirtual_ || column < 0 || column >= GetColumnCount()) return false;
    MoveBlocksForColumns(column, -1);
    const int stored = columnOrder_[size_t(column)];
    for (Row& cells : rows_) {
        std::unique_ptr<CGridCellBase> gone = std::move(cells[size_t(stored)]);
        cells.erase(cells.begin() + stored);
        DestroyCell(gone);
    }
    columns_.erase(columns_.begin() + stored);
    columnOrder_.erase(columnOrder_.begin() + column);
    for (int& other : columnOrder_) {
        if (other > stored) --other;
    }
    std::erase_if(columnNames_, [&](const auto& name) { return name.second == stored; });
    for (auto& [name, named] : columnNames_) {
        if (named > stored) --named;
    }
    columnWidths_.Erase(column, 1);
    for (const CCellRange& block : blocks_)
        MarkBlock(block, true);
    if (column < fixedColumns_) --fixedColumns_;
    selection_.EraseColumn(column);
    tree_->ColumnWent(column);
    for (CCellID* const id : {&focusCell_, &selectionStart_, &pressedCell_}) {
        if (id->col == column) *id = {};
        if (id->col > column) --id->col;
    }
    Restructured();
    return true;
}

bool CGridCtrl::SetColumnOrder(const std::vector<int>& order) {
    EndEditing();
    std::vector<int> sorted = order, all(columns_.size());
    std::sort(sorted.begin(), sorted.end());
    std::iota(all.begin(), all.end(), 0);
    if (sorted != all) return false;
    ResetSelectedRange();
    SetFocusCell(-1, -1);
    // A block would be torn apart.
    ReplaceBlocks({});
    std::vector<int> widths(columns_.size());
    for (size_t column = 0; column < order.size(); ++column)
        widths[size_t(columnOrder_[column])] = columnWidths_[int(column)];
    const int tree = tree_->GetColumn();
    const int treeStored = tree < 0 ? -1 : columnOrder_[size_t(tree)];
    columnOrder_ = order;
    for (size_t column = 0; column < order.size(); ++column) {
        columnWidths_.Set(int(column), widths[size_t(order[column])]);
        if (order[column] == treeStored) tree_->SetColumn(int(column));
    }
    UpdateFixedBits(GetRowCount(), GetColumnCount());
    Restructured();
    return true;
}

uint32_t CGridCtrl::GetColumnFormat(int column) const {
    if (column < 0 || column >= GetColumnCount()) return 0;
    return columns_[size_t(columnOrder_[size_t(column)])].format;
}

bool CGridCtrl::SetColumnFormat(int column, uint32_t format) {
    if (column < 0 || column >= GetColumnCount()) return false;
    columns_[size_t(columnOrder_[size_t(column)])].format = format;
    return true;
}

std::wstring CGridCtrl::GetColumnText(int column) const {
    if (column < 0 || column >= GetColumnCount()) return {};
    return columns_[size_t(columnOrder_[size_t(column)])].text;
}

bool CGridCtrl::SetColumnText(int column, const std::wstring& text) {
    if (column < 0 || column >= GetColumnCount()) return false;
    columns_[size_t(columnOrder_[size_t(column)])].text = text;
    return true;
}

bool CGridCtrl::SetColumnName(const std::wstring& name, int column) {
    if (column < 0 || column >= GetColumnCount()) return false;
    columnNames_[name] = columnOrder_[size_t(column)];
    return true;
}

int CGridCtrl::GetColumnByName(const std::wstring& name) const {
    const auto found = columnNames_.find(name);
    if (found == columnNames_.end()) return -1;
    const auto place = std::find(columnOrder_.begin(), columnOrder_.end(), found->second);
    return place == columnOrder_.end() ? -1 : int(place - columnOrder_.begin());
}

}  // namespace sg::grid
