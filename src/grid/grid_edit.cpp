#include <QKeyEvent>

#include "grid/grid_ctrl.h"
#include "grid/in_place_edit.h"
#include "grid/title_tip.h"

// Edits: their begin, their end, and what a new text has to pass.
namespace sg::grid {

void CGridCtrl::OnEditCell(int row, int column, QPoint point, uint32_t character) {
    if (titleTip_) titleTip_->Hide();
    EndEditing();
    CGridCellBase* cell = GetCell(row, column);
    if (cell == nullptr || rowHeights_[row] == 0 || columnWidths_[column] == 0) return;
    if (!isEditable_ || cell->IsReadOnly()) return;
    EnsureVisible(row, column);
    QRect rect;
    if (!GetCellRect(row, column, rect)) return;
    const CellWatch watch(*this, cell, {row, column});
    if (!AskBeginEdit({row, column})) return;
    if (watch.Cell() == nullptr) return;
    // The owner may have moved rows.
    const CCellID id = watch.Place();
    cell = CellForEvent(id);
    if (!GetCellRect(id.row, id.col, rect)) return;
    cell->Edit(id.row, id.col, rect, point, kEditorId, character);
    if (watch.Cell() != nullptr) editor_ = watch.Cell()->GetEditWnd();
}

bool CGridCtrl::BeginEdit(int row, int column) {
    OnEditCell(row, column, {-1, -1}, kEditByReturn);
    return editor_ != nullptr;
}

void CGridCtrl::EndEditing() {
    if (editor_ != nullptr) endEditorOf(*editor_);
}

void CGridCtrl::OnEndInPlaceEdit(CellWatch& watch, const std::wstring& text, int key,
                                 Qt::KeyboardModifiers modifiers) {
    editor_ = nullptr;
    OnEndEditCell(watch, text);
    if (watch.Cell() != nullptr) watch.Cell()->OnEndEdit();
    if (watch.Grid() == nullptr) return;
    const bool isTab = key == Qt::Key_Tab || key == Qt::Key_Backtab;
    const bool isMove = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up ||
                        key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (!isMove && !(isTab && handleTabKey_)) return;
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    HandleKey(event);
}

void CGridCtrl::OnEndEditCell(CellWatch& watch, const std::wstring& text) {
    if (watch.Cell()->GetText() != text) CommitText(watch, text);
}

bool CGridCtrl::ValidateEdit(int row, int column, const std::wstring& text) {
    CGridCellBase* const cell = GetCell(row, column);
    return cell != nullptr && cell->ValidateEdit(text);
}

// Stores the text, and puts the old one back when it does not pass or the owner refuses it.
bool CGridCtrl::CommitText(CellWatch& watch, const std::wstring& text) {
    const std::wstring before = watch.Cell()->GetText();
    watch.Cell()->SetText(text);
    const CCellID id = watch.Place();
    const bool isAccepted = ValidateEdit(id.row, id.col, text) &&
                            (listener_ == nullptr || listener_->OnEndEdit(*this, id));
    CGridCellBase* const cell = watch.Cell();
    if (cell == nullptr) return isAccepted;
    if (isAccepted) {
        isModified_ = true;
        cell->SetState(cell->GetState() | GVIS_MODIFIED);
    } else {
        cell->SetText(before);
    }
    const CCellID now = watch.Place();
    RedrawCell(now.row, now.col);
    return isAccepted;
}

bool CGridCtrl::CommitEdit(CCellID id, const std::wstring& text) {
    CellWatch watch(*this, GetCell(id.row, id.col), id);
    if (watch.Cell() == nullptr) return false;
    return watch.Cell()->GetText() == text || CommitText(watch, text);
}

bool CGridCtrl::SetItemTextWithNotify(int row, int column, const std::wstring& text) {
    CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr || !isEditable_ || cell->IsReadOnly()) return false;
    CellWatch watch(*this, cell, {row, column});
    if (!AskBeginEdit({row, column})) return false;
    if (watch.Cell() == nullptr) return false;
    return watch.Cell()->GetText() == text || CommitText(watch, text);
}

}  // namespace sg::grid
