#include "grid/in_place_edit.h"

#include <QFocusEvent>
#include <QFontMetrics>
#include <QKeyEvent>

#include <limits>

#include "grid/grid_ctrl.h"

namespace sg::grid {
namespace {

bool selectsAll(uint32_t character) {
    constexpr uint32_t blank = 32, down = 40;
    return character == kEditByTab || (character >= blank && character <= down);
}

bool movesInGrid(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up ||
           key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

}  // namespace

QString toQString(const std::wstring& text) {
    return QString::fromStdWString(text);
}

void beginEditorWith(QLineEdit& editor, uint32_t character) {
    if (character == kEditByClick || character == kEditByReturn) {
        editor.end(false);
    } else if (character == kEditByBackspace) {
        editor.end(false);
        editor.backspace();
    } else {
        editor.selectAll();
        const char32_t typed = character;
        if (!selectsAll(character)) editor.insert(QString::fromUcs4(&typed, 1));
    }
}

CInPlaceEdit* CInPlaceEdit::Open(CGridCellBase& cell, CCellID id, const QRect& rect, int controlId,
                                 uint32_t character) {
    auto* const editor = new CInPlaceEdit(cell, id, character);
    editor->setObjectName(QString::number(controlId));
    // A frame's line lies on those between cells.
    editor->setGeometry(rect);
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
    editor->BeginWith(character);
    return editor->HasEnded() ? nullptr : editor;
}

CInPlaceEdit::CInPlaceEdit(CGridCellBase& cell, CCellID id, uint32_t character)
    : QLineEdit(cell.GetGrid()->viewport()),
      InPlaceEditor(cell, id),
      shown_(toQString(cell.GetText())),
      isByMouse_(character == kEditByClick) {
    setFrame(false);
    setFont(cell.GetFont());
    setMaxLength(std::numeric_limits<int>::max());
    const uint32_t format = cell.GetFormat();
    setAlignment(((format & kTextRight) != 0    ? Qt::AlignRight
                  : (format & kTextCentre) != 0 ? Qt::AlignHCenter
                                                : Qt::AlignLeft) |
                 Qt::AlignVCenter);
    setText(shown_);
}

void CInPlaceEdit::BeginWith(uint32_t character) {
    beginEditorWith(*this, character);
    Grow();
}

bool CInPlaceEdit::TakeText(std::wstring& text_) {
    // Characters that the editor cannot hold stay where nothing was changed.
    if (text() == shown_) return false;
    text_ = text().toStdWString();
    return true;
}

void CInPlaceEdit::RestoreText() {
    setText(shown_);
}

void CInPlaceEdit::Grow() {
    const int wanted = fontMetrics().horizontalAdvance(text() + QStringLiteral("XX"));
    const int room = parentWidget()->width() - x();
    if (wanted > width() && room > width()) resize(std::min(wanted, room), height());
}

bool CInPlaceEdit::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
            EndByKey(*key);
            return true;
        }
    }
    return QLineEdit::event(event);
}

void CInPlaceEdit::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool isControl = (event->modifiers() & Qt::ControlModifier) != 0;
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape ||
        (movesInGrid(key) && (isControl || !isByMouse_))) {
        event->accept();
        EndByKey(*event);
        return;
    }
    QLineEdit::keyPressEvent(event);
    Grow();
}

void CInPlaceEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // The menu of the editor belongs to the edit.
    if (event->reason() != Qt::PopupFocusReason) End();
}

}  // namespace sg::grid
