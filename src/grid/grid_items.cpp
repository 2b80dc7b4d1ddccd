#include "grid/grid_ctrl.h"

// What single cells hold, by their place.
namespace sg::grid {

bool CGridCtrl::SetItemText(int row, int column, const std::wstring& text) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetText(text);
    return RedrawCell(row, column);
}

std::wstring CGridCtrl::GetItemText(int row, int column) const {
    const CGridCellBase* const cell = GetCell(row, column);
    return cell == nullptr ? std::wstring() : cell->GetText();
}

std::wstring CGridCtrl::GetItemTextByName(int row, const std::wstring& name) const {
    return GetItemText(row, GetColumnByName(name));
}

bool CGridCtrl::SetItemTextByName(int row, const std::wstring& name, const std::wstring& text) {
    return SetItemText(row, GetColumnByName(name), text);
}

// The selected bit takes the cell into the selection, or out of it.
bool CGridCtrl::SetItemState(int row, int column, uint32_t state) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    const CCellRange one{row, column, row, column};
    if ((state & GVIS_SELECTED) != 0) {
        selection_.Add(one);
    } else if (cell->IsSelected()) {
        selection_.Remove(one);
    }
    cell->SetState(state);
    return RedrawCell(row, column);
}

uint32_t CGridCtrl::GetItemState(int row, int column) const {
    const CGridCellBase* const cell = GetCell(row, column);
    return cell == nullptr ? 0 : cell->GetState();
}

bool CGridCtrl::SetItemData(int row, int column, intptr_t data) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetData(data);
    return true;
}

intptr_t CGridCtrl::GetItemData(int row, int column) const {
    const CGridCellBase* const cell = GetCell(row, column);
    return cell == nullptr ? 0 : cell->GetData();
}

bool CGridCtrl::SetItemImage(int row, int column, int image) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetImage(image);
    return RedrawCell(row, column);
}

bool CGridCtrl::SetItemFormat(int row, int column, uint32_t format) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetFormat(format);
    return RedrawCell(row, column);
}

bool CGridCtrl::SetItemBkColour(int row, int column, GridColour colour) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetBackClr(colour);
    return RedrawCell(row, column);
}

bool CGridCtrl::SetItemFgColour(int row, int column, GridColour colour) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetTextClr(colour);
    return RedrawCell(row, column);
}

bool CGridCtrl::SetItemFont(int row, int column, const QFont& font) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    cell->SetFont(&font);
    return RedrawCell(row, column);
}

bool CGridCtrl::RedrawCell(int row, int column) {
    if (!IsValid(row, column)) return false;
    if (!isVisible() || isLayoutStale_ || isBeingDestroyed_) return true;
    const CGridCellBase* cell = GetCell(row, column);
    CCellID id{row, column};
    if (cell->IsMergedIntoOther()) id = cell->GetMergeCell();
    QRect rect;
    // Without lines the background reaches one pixel further.
    if (GetCellRect(id.row, id.col, rect)) viewport()->update(rect.adjusted(0, 0, 1, 1));
    return true;
}

}  // namespace sg::grid
