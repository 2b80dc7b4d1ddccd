#include "grid/in_place_editor.h"

#include <QKeyEvent>
#include <QWidget>

#include "grid/grid_ctrl.h"
#include "grid/in_place_edit.h"

namespace sg::grid {

InPlaceEditor::InPlaceEditor(CGridCellBase& cell, CCellID id)
    : watch_(*cell.GetGrid(), &cell, id), startText_(cell.GetText()) {}

InPlaceEditor::~InPlaceEditor() = default;

// The grid takes the focus before the toolkit passes it on as Tab does, which would move the focus
// cell while the rows change.
void InPlaceEditor::Leave() {
    if (Grid() != nullptr && Window().hasFocus()) Grid()->setFocus(Qt::OtherFocusReason);
    Window().hide();
    Window().deleteLater();
}

void InPlaceEditor::Abandon() {
    if (hasEnded_) return;
    hasEnded_ = true;
    Leave();
}

void InPlaceEditor::End() {
    if (hasEnded_) return;
    hasEnded_ = true;
    std::wstring text = startText_;
    TakeText(text);
    if (watch_.Cell() != nullptr) {
        Grid()->OnEndInPlaceEdit(watch_, text, lastKey_, modifiers_);
    }
    Leave();
}

void InPlaceEditor::EndByKey(const QKeyEvent& event) {
    if (hasEnded_) return;
    lastKey_ = event.key();
    modifiers_ = event.modifiers();
    if (lastKey_ == Qt::Key_Escape) RestoreText();
    // Losing the focus ends the edit where the window is active.
    if (Grid() != nullptr) Grid()->setFocus(Qt::OtherFocusReason);
    End();
}

void endEditorOf(QWidget& window) {
    if (auto* const editor = dynamic_cast<InPlaceEditor*>(&window)) editor->End();
}

void abandonEditorOf(QWidget& window) {
    if (auto* const editor = dynamic_cast<InPlaceEditor*>(&window)) editor->Abandon();
}

}  // namespace sg::grid
