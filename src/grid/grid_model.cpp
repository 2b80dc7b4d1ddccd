#include <iterator>
#include <new>
#include <utility>

#include "grid/cell_watch.h"
#include "grid/grid_ctrl.h"
#include "grid/tree_column.h"

// Rows, columns and the cells in them.
namespace sg::grid {
namespace {

constexpr int kMostItems = 1 << 27;

}  // namespace

bool CGridCtrl::IsValid(int row, int column) const {
    return row >= 0 && row < GetRowCount() && column >= 0 && column < GetColumnCount();
}

CGridCellBase* CGridCtrl::GetCell(int row, int column) const {
    if (!IsValid(row, column)) return nullptr;
    return rows_[size_t(row)][size_t(columnOrder_[size_t(column)])].get();
}

uint32_t CGridCtrl::FixedBits(int row, int column) const {
    uint32_t bits = 0;
    if (row < fixedRows_) bits |= GVIS_FIXED | GVIS_FIXEDROW;
    if (column < fixedColumns_) bits |= GVIS_FIXED | GVIS_FIXEDCOL;
    return bits;
}

// Of the cells in these first rows and of all in these first columns.
void CGridCtrl::UpdateFixedBits(int rows, int columns) {
    constexpr uint32_t fixed = GVIS_FIXED | GVIS_FIXEDROW | GVIS_FIXEDCOL;
    for (int row = 0; row < GetRowCount(); ++row) {
        const int last = row < rows ? GetColumnCount() : std::min(columns, GetColumnCount());
        for (int column = 0; column < last; ++column) {
            CGridCellBase& cell = *GetCell(row, column);
            cell.SetState((cell.GetState() & ~fixed) | FixedBits(row, column));
        }
    }
}

std::unique_ptr<CGridCellBase> CGridCtrl::CreateCell(int row, int column) {
    std::unique_ptr<CGridCellBase> cell = defaultClass_->create();
    cell->SetGrid(this);
    cell->SetCoords(row, column);
    const uint32_t bits = FixedBits(row, column);
    if (bits != 0) cell->SetState(bits);
    return cell;
}

void CGridCtrl::DestroyCell(std::unique_ptr<CGridCellBase>& cell) {
    for (CellWatch* const watch : watches_) {
        if (watch->cell_ == cell.get()) watch->cell_ = nullptr;
    }
    cell.reset();
}

void CGridCtrl::DestroyRow(Row& row) {
    for (auto& cell : row)
        DestroyCell(cell);
}

bool CGridCtrl::ReplaceCell(int row, int column, std::unique_ptr<CGridCellBase> cell) {
    if (!IsValid(row, column) || !cell) return false;
    auto& place = rows_[size_t(row)][size_t(columnOrder_[size_t(column)])];
    cell->SetGrid(this);
    cell->CopyFrom(*place);
    cell->SetCoords(row, column);
    std::swap(place, cell);
    DestroyCell(cell);
    RedrawCell(row, column);
    return true;
}

bool CGridCtrl::SetCellType(int row, int column, const GridCellClass& type) {
    if (isVirtual_) return false;
    return ReplaceCell(row, column, type.create());
}

CCellID CGridCtrl::PlaceOf(const CGridCellBase& cell) const {
    for (int row = 0; row < GetRowCount(); ++row) {
        for (int column = 0; column < GetColumnCount(); ++column) {
            if (GetCell(row, column) == &cell) return {row, column};
        }
    }
    return {};
}

// After rows or columns have come or gone.
void CGridCtrl::Restructured() {
    DropFocusOutside();
    hoveredCell_ = {};
    tree_->Touch();
    NeedLayout();
}

void CGridCtrl::DropFocusOutside() {
    if (focusCell_.IsValid() && !IsValid(focusCell_)) focusCell_ = {};
    if (selectionStart_.IsValid() && !IsValid(selectionStart_)) selectionStart_ = {};
    if (pressedCell_.IsValid() && !IsValid(pressedCell_)) pressedCell_ = {};
}

// Makes the cells of a row that has none.
void CGridCtrl::FillRow(int row) {
    Row& cells = rows_[size_t(row)];
    cells.reserve(columns_.size());
    cells.resize(columns_.size());
    for (int column = 0; column < GetColumnCount(); ++column)
        cells[size_t(columnOrder_[size_t(column)])] = CreateCell(row, column);
}

bool CGridCtrl::SetRowCount(int count) {
    const int before = GetRowCount();
    if (count < 0 || count > kMostItems) return false;
    if (count == before) return true;
    fixedRows_ = std::min(fixedRows_, count);
    if (count < before) {
        std::vector<CCellRange> blocks;
        for (CCellRange block : blocks_) {
            block.maxRow = std::min(block.maxRow, count - 1);
            if (block.Count() > 1) blocks.push_back(block);
        }
        if (blocks != blocks_) ReplaceBlocks(std::move(blocks));
        selection_.Remove({count, 0, before - 1, GetColumnCount()});
        for (size_t row = size_t(count); row < rows_.size(); ++row)
            DestroyRow(rows_[row]);
        rows_.resize(size_t(count));
        rowHeights_.Resize(count, 0);
        tree_->RowsWent(count, before - count);
    } else {
        try {
            rows_.resize(size_t(count));
            rowHeights_.Resize(count, GetDefaultCell(false, false).GetHeight());
            for (int row = before; row < count; ++row)
                FillRow(row);
        } catch (const std::bad_alloc&) {
            rows_.resize(size_t(before));
            rowHeights_.Resize(before, 0);
            return false;
        }
    }
    Restructured();
    return true;
}

bool CGridCtrl::SetColumnCount(int count) {
    if (count < 0 || count > kMostItems) return false;
    const int before = GetColumnCount();
    while (GetColumnCount() > count)
        DeleteColumn(GetColumnCount() - 1);
    if (count <= before) return true;
    try {
        columns_.resize(size_t(count));
        columnWidths_.Resize(count, GetDefaultCell(false, false).GetWidth());
        for (int column = before; column < count; ++column)
            columnOrder_.push_back(column);
        for (int row = 0; row < GetRowCount(); ++row) {
            Row& cells = rows_[size_t(row)];
            cells.reserve(size_t(count));
            for (int column = before; column < count; ++column)
                cells.push_back(CreateCell(row, column));
        }
    } catch (const std::bad_alloc&) {
        for (Row& cells : rows_)
            cells.resize(std::min(cells.size(), size_t(before)));
        columns_.resize(size_t(before));
        columnOrder_.resize(size_t(before));
        columnWidths_.Resize(before, 0);
        return false;
    }
    Restructured();
    return true;
}

bool CGridCtrl::SetFixedRowCount(int count) {
    EndEditing();
    if (count < 0 || count > GetRowCount()) return false;
    const int rows = std::max(fixedRows_, count);
    fixedRows_ = count;
    UpdateFixedBits(rows, 0);
    ResetSelectedRange();
    Restructured();
    return true;
}

bool CGridCtrl::SetFixedColumnCount(int count) {
    EndEditing();
    if (count < 0 || count > GetColumnCount()) return false;
    const int columns = std::max(fixedColumns_, count);
    fixedColumns_ = count;
    UpdateFixedBits(0, columns);
    ResetSelectedRange();
    Restructured();
    return true;
}

int CGridCtrl::GetRowHeight(int row) const {
    return row >= 0 && row < GetRowCount() ? rowHeights_[row] : -1;
}

int CGridCtrl::GetColumnWidth(int column) const {
    return column >= 0 && column < GetColumnCount() ? columnWidths_[column] : -1;
}

bool CGridCtrl::SetRowHeight(int row, int height) {
    if (row < 0 || row >= GetRowCount() || height < 0) return false;
    rowHeights_.Set(row, height);
    NeedLayout();
    return true;
}

bool CGridCtrl::SetColumnWidth(int column, int width) {
    if (column < 0 || column >= GetColumnCount() || width < 0) return false;
    columnWidths_.Set(column, width);
    NeedLayout();
    return true;
}

// Focus, selection and blocks go with the rows that they are in.
bool CGridCtrl::InsertRowsAt(int row, int count) {
    const int before = GetRowCount();
    try {
        std::vector<Row> made(static_cast<size_t>(count));
        rows_.insert(rows_.begin() + row, std::make_move_iterator(made.begin()),
                     std::make_move_iterator(made.end()));
        rowHeights_.Insert(row, count, GetDefaultCell(false, false).GetHeight());
        if (row < fixedRows_) fixedRows_ += count;
        for (int i = 0; i < count; ++i)
            FillRow(row + i);
    } catch (const std::bad_alloc&) {
        if (rows_.size() > size_t(before))
            rows_.erase(rows_.begin() + row, rows_.begin() + row + count);
        if (GetRowCount() > before) rowHeights_.Erase(row, count);
        return false;
    }
    tree_->RowsCame(row, count);
    if (row == before) return true;
    selection_.InsertRows(row, count);
    for (CCellID* const id : {&focusCell_, &selectionStart_, &pressedCell_}) {
        if (id->row >= row) id->row += count;
    }
    MoveBlocksForRows(row, count);
    return true;
}

int CGridCtrl::InsertRow(const std::wstring& text, int before) {
    const int row = before == -1 ? GetRowCount() : before;
    if (isVirtual_ || row < 0 || row > GetRowCount() || GetRowCount() >= kMostItems) return -1;
    if (!InsertRowsAt(row, 1)) return -1;
    SetItemText(row, 0, text);
    Restructured();
    return row;
}

void CGridCtrl::EraseRowsAt(int row, int count) {
    for (int i = 0; i < count; ++i)
        MoveBlocksForRows(row, -1);
    const auto first = rows_.begin() + row;
    std::vector<Row> gone(std::make_move_iterator(first), std::make_move_iterator(first + count));
    rows_.erase(first, first + count);
    rowHeights_.Erase(row, count);
    if (row < fixedRows_) fixedRows_ -= std::min(count, fixedRows_ - row);
    selection_.EraseRows(row, count);
    tree_->RowsWent(row, count);
    const auto isGone = [&](int other) { return other >= row && other < row + count; };
    const bool hadFocus = isGone(focusCell_.row);
    const int focusColumn = focusCell_.col;
    for (CCellID* const id : {&focusCell_, &selectionStart_, &pressedCell_}) {
        if (isGone(id->row)) {
            *id = {};
        } else if (id->row > row) {
            id->row -= count;
        }
    }
    for (Row& cells : gone)
        DestroyRow(cells);
    if (hadFocus) {
        // The row that came in its place, so that the keyboard goes on from there.
        const CCellID next{std::min(row, GetRowCount() - 1), focusColumn};
        if (IsValid(next) && IsPlain(next)) SetFocusCell(next.row, next.col);
    }
    for (const CCellRange& block : blocks_)
        MarkBlock(block, true);
    Restructured();
}

bool CGridCtrl::DeleteRow(int row) {
    if (isVirtual_ || row < 0 || row >= GetRowCount()) return false;
    EraseRowsAt(row, 1);
    return true;
}

bool CGridCtrl::DeleteAllItems() {
    if (isVirtual_) return false;
    blocks_.clear();
    selection_.Clear();
    focusCell_ = selectionStart_ = pressedCell_ = {};
    for (Row& row : rows_)
        DestroyRow(row);
    rows_.clear();
    rowHeights_.Resize(0, 0);
    columnWidths_.Resize(0, 0);
    columns_.clear();
    columnOrder_.clear();
    columnNames_.clear();
    fixedRows_ = fixedColumns_ = 0;
    tree_->Forget();
    Restructured();
    return true;
}

CGridCellBase* CGridCtrl::CellForEvent(CCellID id) {
    CGridCellBase* const cell = GetCell(id.row, id.col);
    if (cell != nullptr) cell->SetCoords(id.row, id.col);
    return cell;
}

}  // namespace sg::grid
