#include "grid/in_place_list.h"

#include <QAbstractItemView>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>

#include "grid/grid_ctrl.h"
#include "grid/in_place_edit.h"

namespace sg::grid {
namespace {

constexpr int kMostLines = 12;

bool moves(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up ||
           key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

}  // namespace

CInPlaceList* CInPlaceList::Open(CGridCellBase& cell, CCellID id, const QRect& rect, int controlId,
                                 uint32_t character, const std::vector<std::wstring>& options,
                                 int style, bool isOpen) {
    auto* const list = new CInPlaceList(cell, id, options, style);
    list->setObjectName(QString::number(controlId));
    list->setGeometry(rect);
    list->show();
    list->setFocus(Qt::OtherFocusReason);
    if (list->lineEdit() != nullptr) {
        beginEditorWith(*list->lineEdit(), character);
    } else if (character > 32) {
        const char32_t typed = character;
        QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, QString::fromUcs4(&typed, 1));
        list->QComboBox::keyPressEvent(&key);
    }
    if (isOpen) list->showPopup();
    return list->HasEnded() ? nullptr : list;
}

CInPlaceList::CInPlaceList(CGridCellBase& cell, CCellID id,
                           const std::vector<std::wstring>& options, int style)
    : QComboBox(cell.GetGrid()->viewport()),
      InPlaceEditor(cell, id),
      shown_(toQString(cell.GetText())) {
    setFont(cell.GetFont());
    setFrame(false);
    setInsertPolicy(QComboBox::NoInsert);
    setMaxVisibleItems(std::clamp(int(options.size()), 1, kMostLines));
    for (const std::wstring& option : options)
        addItem(toQString(option));
    setEditable(style != kListOnly);
    // The editor would put an option in the place of what differs from it in case alone.
    if (isEditable()) setCompleter(nullptr);
    RestoreText();
    view()->installEventFilter(this);
    view()->window()->installEventFilter(this);
    // A choice in the list is the end of the edit; one by a typed character is not.
    connect(this, &QComboBox::activated, this, [this] {
        if (HasEnded() || !isListChoice_) return;
        if (Grid() != nullptr) Grid()->setFocus(Qt::OtherFocusReason);
        End();
    });
}

void CInPlaceList::RestoreText() {
    const int option = findText(shown_, Qt::MatchExactly | Qt::MatchCaseSensitive);
    setCurrentIndex(option);
    if (isEditable()) {
        setEditText(shown_);
    } else if (option < 0) {
        setPlaceholderText(shown_);
    }
}

// Without a choice a list shows the cell's text.
QString CInPlaceList::Shown() const {
    return !isEditable() && currentIndex() < 0 ? shown_ : currentText();
}

bool CInPlaceList::TakeText(std::wstring& text) {
    if (Shown() == shown_) return false;
    text = Shown().toStdWString();
    return true;
}

bool CInPlaceList::IsOpen() const {
    return view() != nullptr && view()->isVisible();
}

bool CInPlaceList::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
            EndByKey(*key);
            return true;
        }
    }
    return QComboBox::event(event);
}

void CInPlaceList::hidePopup() {
    isListChoice_ = IsOpen();
    QComboBox::hidePopup();
}

void CInPlaceList::keyPressEvent(QKeyEvent* event) {
    isListChoice_ = false;
    const int key = event->key();
    const bool isControl = (event->modifiers() & Qt::ControlModifier) != 0;
    const bool isAlt = (event->modifiers() & Qt::AltModifier) != 0;
    if (isAlt && (key == Qt::Key_Down || key == Qt::Key_Up)) {
        showPopup();
    } else if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape ||
               (moves(key) && (isControl || !IsOpen()))) {
        event->accept();
        EndByKey(*event);
    } else {
        QComboBox::keyPressEvent(event);
    }
}

// Tab takes what the list stands on and leaves; so do moving keys while Ctrl is held. Esc leaves
// without it.
bool CInPlaceList::TakeListKey(const QKeyEvent& event) {
    const int key = event.key();
    const bool isControl = (event.modifiers() & Qt::ControlModifier) != 0;
    const bool isTab = key == Qt::Key_Tab || key == Qt::Key_Backtab;
    if (!isTab && key != Qt::Key_Escape && !(isControl && moves(key))) return false;
    const QModelIndex current = view()->currentIndex();
    if (current.isValid()) setCurrentIndex(current.row());
    hidePopup();
    EndByKey(event);
    return true;
}

bool CInPlaceList::eventFilter(QObject* watched, QEvent* event) {
    const bool isOverride = event->type() == QEvent::ShortcutOverride;
    const bool isKey = isOverride || event->type() == QEvent::KeyPress;
    if (!isKey || !IsOpen() || HasEnded()) return QComboBox::eventFilter(watched, event);
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (!isOverride && TakeListKey(key)) return true;
    if (isOverride && key.key() == Qt::Key_Escape) {
        event->accept();  // otherwise the toolkit closes the list, and the edit goes on
        return true;
    }
    return QComboBox::eventFilter(watched, event);
}

void CInPlaceList::focusOutEvent(QFocusEvent* event) {
    QComboBox::focusOutEvent(event);
    // The list has the focus while it is open.
    if (event->reason() != Qt::PopupFocusReason && !IsOpen()) End();
}

}  // namespace sg::grid
