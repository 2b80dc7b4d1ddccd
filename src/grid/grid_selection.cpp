#include "grid/grid_ctrl.h"

// Focus and selection.
namespace sg::grid {

bool CGridCtrl::IsCellSelected(int row, int column) const {
    return IsValid(row, column) && selection_.Contains({row, column});
}

bool CGridCtrl::SetFocusCell(int row, int column) {
    const CCellID before = focusCell_;
    const CCellID cell = IsValid(row, column) ? CCellID{row, column} : CCellID();
    if (!cell.IsValid() && (row != -1 || column != -1)) return false;
    if (cell == before) return true;
    focusCell_ = cell;
    if (CGridCellBase* const old = GetCell(before.row, before.col)) {
        old->SetState(old->GetState() & ~uint32_t(GVIS_FOCUSED));
    }
    if (CGridCellBase* const now = GetCell(cell.row, cell.col)) {
        now->SetState(now->GetState() | GVIS_FOCUSED);
    }
    if (!selectionStart_.IsValid()) selectionStart_ = cell;
    for (const CCellID& changed : {before, cell}) {
        RedrawCell(changed.row, changed.col);
        if (!trackFocusCell_) continue;
        // Its headings look pressed.
        for (int heading = 0; heading < fixedRows_; ++heading)
            RedrawCell(heading, changed.col);
        for (int heading = 0; heading < fixedColumns_; ++heading)
            RedrawCell(changed.row, heading);
    }
    return true;
}

void CGridCtrl::MarkSpan(int row, int first, int last, bool on) {
    for (int column = first; column <= last; ++column) {
        CGridCellBase& cell = *GetCell(row, column);
        const uint32_t state = cell.GetState();
        cell.SetState(on ? state | GVIS_SELECTED : state & ~uint32_t(GVIS_SELECTED));
    }
}

void CGridCtrl::AddToSelection(const CCellRange& range) {
    if (!range.IsValid()) return;
    selection_.Add(range);
    for (int row = range.minRow; row <= range.maxRow; ++row)
        MarkSpan(row, range.minCol, range.maxCol, true);
    Refresh();
}

void CGridCtrl::ClearSelection() {
    if (selection_.IsEmpty()) return;
    selection_.ForEachSpan(
        [&](int row, int first, int last) { MarkSpan(row, first, last, false); });
    selection_.Clear();
    Refresh();
}

CCellRange CGridCtrl::WholeRows(CCellRange range) const {
    if (!isListMode_ || !range.IsValid()) return range;
    range.minCol = std::min(fixedColumns_, GetColumnCount() - 1);
    range.maxCol = GetColumnCount() - 1;
    return range;
}

bool CGridCtrl::SetSelectedRange(const CCellRange& range) {
    if (range.IsValid() &&
        (!IsValid(range.minRow, range.minCol) || !IsValid(range.maxRow, range.maxCol))) {
        return false;
    }
    ClearSelection();
    AddToSelection(WholeRows(range));
    return true;
}

void CGridCtrl::ResetSelectedRange() {
    ClearSelection();
    previousSelection_.Clear();
    selectionStart_ = focusCell_;
}

void CGridCtrl::SelectAllCells() {
    SetSelectedRange({fixedRows_, fixedColumns_, GetRowCount() - 1, GetColumnCount() - 1});
}

// With `keepPrevious`, what was selected when the drag began stays.
void CGridCtrl::SelectRangeByUser(const CCellRange& range, bool keepPrevious) {
    ClearSelection();
    if (keepPrevious) {
        previousSelection_.ForEachSpan([&](int row, int first, int last) {
            const CCellRange kept{row, first, std::min(row, GetRowCount() - 1),
                                  std::min(last, GetColumnCount() - 1)};
            AddToSelection(kept);
        });
    }
    AddToSelection(WholeRows(range));
}

// With Shift the selection reaches from where it began to the cell, else it is the cell alone.
void CGridCtrl::MoveFocus(CCellID cell, Qt::KeyboardModifiers modifiers) {
    if (!IsValid(cell)) return;
    TellChanging(focusCell_);
    if (!IsValid(cell)) return;  // the owner deleted rows
    SetFocusCell(cell.row, cell.col);
    if ((modifiers & Qt::ShiftModifier) == 0 || !selectionStart_.IsValid()) selectionStart_ = cell;
    SelectRangeByUser(CCellRange::Between(selectionStart_, cell),
                      (modifiers & Qt::ControlModifier) != 0);
    TellChanged(focusCell_);
}

}  // namespace sg::grid
