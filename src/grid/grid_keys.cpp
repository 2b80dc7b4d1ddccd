#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>

#include "grid/grid_ctrl.h"
#include "grid/title_tip.h"
#include "grid/tree_column.h"

// The keyboard.
namespace sg::grid {
namespace {

bool isMovingKey(int key) {
    switch (key) {
        case Qt::Key_Down:
        case Qt::Key_Up:
        case Qt::Key_Right:
        case Qt::Key_Left:
        case Qt::Key_PageDown:
        case Qt::Key_PageUp:
        case Qt::Key_Home:
        case Qt::Key_End:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return true;
        default:
            return false;
    }
}

bool isTabKey(int key) {
    return key == Qt::Key_Tab || key == Qt::Key_Backtab;
}

// The character that a key event brings, as edits know it; 0: none.
uint32_t characterOf(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Escape) return 0;
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) return kEditByReturn;
    if (event.key() == Qt::Key_Backspace) return kEditByBackspace;
    const QList<uint> typed = event.text().toUcs4();
    return typed.isEmpty() || typed[0] < 32 || typed[0] == 127 ? 0 : typed[0];
}

}  // namespace

void CGridCtrl::keyPressEvent(QKeyEvent* event) {
    if (titleTip_) titleTip_->Hide();
    HandleKey(*event);
}

void CGridCtrl::HandleKey(QKeyEvent& event) {
    event.ignore();
    if (!IsValid(focusCell_)) return;
    const GridKey key{event.key(), event.count(), event.modifiers()};
    if (listener_ != nullptr && listener_->OnKeyDown(*this, key)) {
        event.accept();
        return;
    }
    if (!IsValid(focusCell_)) return;
    const bool isControl = (event.modifiers() & Qt::ControlModifier) != 0;
    if (DoKeyCommand(event) || FoldByKey(event)) {
        event.accept();
    } else if (isMovingKey(event.key()) && !(isTabKey(event.key()) && isControl)) {
        event.accept();
        MoveByKey(event);
    } else if (TakeCharacter(event)) {
        event.accept();
    }
}

bool CGridCtrl::DoKeyCommand(const QKeyEvent& event) {
    const int key = event.key();
    const bool isControl = (event.modifiers() & Qt::ControlModifier) != 0;
    const bool isShift = (event.modifiers() & Qt::ShiftModifier) != 0;
    const bool isKeypad = (event.modifiers() & Qt::KeypadModifier) != 0;
    if (isControl && (key == Qt::Key_C || key == Qt::Key_Insert)) {
        OnEditCopy();
    } else if (isControl && key == Qt::Key_X) {
        OnEditCut();
    } else if ((isControl && key == Qt::Key_V) || (isShift && key == Qt::Key_Insert)) {
        OnEditPaste();
    } else if (isControl && key == Qt::Key_A) {
        OnEditSelectAll();
    } else if (isControl && isKeypad && key == Qt::Key_Plus) {
        AutoSizeColumns();
        Refresh();
    } else if (key == Qt::Key_Delete) {
        CutSelectedText();
    } else if (key == Qt::Key_F2) {
        OnEditCell(focusCell_.row, focusCell_.col, {-1, -1}, kEditByClick);
    } else {
        return false;
    }
    return true;
}

// With Alt, left folds the row of the focus and right unfolds it.
bool CGridCtrl::FoldByKey(const QKeyEvent& event) {
    if ((event.modifiers() & Qt::AltModifier) == 0) return false;
    if (event.key() == Qt::Key_Left) return tree_->Collapse(focusCell_.row);
    if (event.key() == Qt::Key_Right) return tree_->Expand(focusCell_.row);
    return false;
}

void CGridCtrl::MoveByKey(const QKeyEvent& event) {
    if (isTabKey(event.key()) && tabLeavesGrid_) {
        QAbstractScrollArea::focusNextPrevChild(event.key() == Qt::Key_Tab &&
                                                (event.modifiers() & Qt::ShiftModifier) == 0);
        return;
    }
    const CCellID target = KeyTarget(event.key(), event.modifiers());
    if (!IsValid(target)) return;
    if (target != focusCell_) {
        MoveFocus(target,
                  isTabKey(event.key()) ? Qt::NoModifier : event.modifiers() & Qt::ShiftModifier);
    }
    EnsureVisible(focusCell_.row, focusCell_.col);
}

// A merged block is one place: moves begin at its edge.
int CGridCtrl::NextRow(int row) const {
    const CCellRange* const block = BlockAt(focusCell_);
    return rowHeights_.NextShown((block != nullptr ? block->maxRow : row) + 1);
}

int CGridCtrl::PreviousRow(int row) const {
    const int previous = rowHeights_.PreviousShown(row - 1);
    return previous >= fixedRows_ ? previous : -1;
}

int CGridCtrl::NextColumn(int column) const {
    const CCellRange* const block = BlockAt(focusCell_);
    return columnWidths_.NextShown((block != nullptr ? block->maxCol : column) + 1);
}

int CGridCtrl::PreviousColumn(int column) const {
    const int previous = columnWidths_.PreviousShown(column - 1);
    return previous >= fixedColumns_ ? previous : -1;
}

// Where a key leads; the focus cell when it leads nowhere.
CCellID CGridCtrl::KeyTarget(int key, Qt::KeyboardModifiers modifiers) {
    const bool isControl = (modifiers & Qt::ControlModifier) != 0;
    const bool isShift = (modifiers & Qt::ShiftModifier) != 0;
    CCellID target = focusCell_;
    switch (key) {
        case Qt::Key_Down:
            target.row = NextRow(target.row);
            break;
        case Qt::Key_Up:
            target.row = PreviousRow(target.row);
            break;
        case Qt::Key_Right:
            target.col = NextColumn(target.col);
            break;
        case Qt::Key_Left:
            target.col = PreviousColumn(target.col);
            break;
        case Qt::Key_PageDown:
        case Qt::Key_PageUp:
            target = PageTarget(key == Qt::Key_PageDown);
            break;
        case Qt::Key_Home:
            target = HomeTarget(isControl);
            break;
        case Qt::Key_End:
            target = EndTarget(isControl);
            break;
        default:
            target = TabTarget(key == Qt::Key_Backtab || isShift);
            break;
    }
    if (!IsValid(target)) return focusCell_;
    const CGridCellBase* const cell = GetCell(target.row, target.col);
    return cell->IsMergedIntoOther() ? cell->GetMergeCell() : target;
}

CCellID CGridCtrl::TabTarget(bool back) const {
    const int column = back ? PreviousColumn(focusCell_.col) : NextColumn(focusCell_.col);
    if (column >= 0) return {focusCell_.row, column};
    if (back) {
        return {PreviousRow(focusCell_.row), columnWidths_.PreviousShown(GetColumnCount() - 1)};
    }
    return {NextRow(focusCell_.row), columnWidths_.NextShown(fixedColumns_)};
}

CCellID CGridCtrl::PageTarget(bool down) {
    if (fixedRows_ >= GetRowCount()) return focusCell_;
    const int before = TopRow();
    if (down) {
        ScrollToRow(std::min(before + RowsInPage(before), GetRowCount()));
    } else {
        const int64_t start = rowHeights_.Start(before) - PlainArea().height();
        const int first = std::max(rowHeights_.At(std::max<int64_t>(start, 0)), fixedRows_);
        // A row that is cut at the top belongs to the page before.
        ScrollToRow(first + (rowHeights_.Start(first) < start && first + 1 < before ? 1 : 0));
    }
    const int scrolled = TopRow() - before;
    int row = focusCell_.row + scrolled;
    if (scrolled == 0) row = down ? GetRowCount() - 1 : fixedRows_;
    row = std::clamp(row, fixedRows_, GetRowCount() - 1);
    const int shown = down ? rowHeights_.PreviousShown(row) : rowHeights_.NextShown(row);
    return {shown >= fixedRows_ ? shown : focusCell_.row, focusCell_.col};
}

CCellID CGridCtrl::HomeTarget(bool toTop) {
    ScrollToColumn(std::min(fixedColumns_, GetColumnCount()));
    CCellID target{focusCell_.row, columnWidths_.NextShown(fixedColumns_)};
    if (toTop) {
        ScrollToRow(std::min(fixedRows_, GetRowCount()));
        target.row = rowHeights_.NextShown(fixedRows_);
    }
    return target;
}

CCellID CGridCtrl::EndTarget(bool toBottom) {
    if (isLayoutStale_) LayOut();
    horizontalScrollBar()->setValue(horizontalScrollBar()->maximum());
    CCellID target{focusCell_.row, columnWidths_.PreviousShown(GetColumnCount() - 1)};
    if (toBottom) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
        target.row = rowHeights_.PreviousShown(GetRowCount() - 1);
    }
    return target;
}

// A typed character begins an edit of the focus cell. False when it is none, or cannot be edited.
bool CGridCtrl::TakeCharacter(const QKeyEvent& event) {
    const uint32_t character = characterOf(event);
    const auto held =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (character == 0 || held != 0 || mouseMode_ != MouseMode::Nothing) return false;
    const CGridCellBase* const cell = GetCell(focusCell_.row, focusCell_.col);
    if (!isEditable_ || cell->IsReadOnly()) return false;
    OnEditCell(focusCell_.row, focusCell_.col, {-1, -1}, character);
    return true;
}

// Composed text begins an edit as typed text does.
void CGridCtrl::inputMethodEvent(QInputMethodEvent* event) {
    const QList<uint> typed = event->commitString().toUcs4();
    if (typed.isEmpty() || !IsValid(focusCell_) || mouseMode_ != MouseMode::Nothing) return;
    OnEditCell(focusCell_.row, focusCell_.col, {-1, -1}, typed[0]);
    if (auto* const line = dynamic_cast<QLineEdit*>(editor_.data())) {
        line->insert(event->commitString().mid(QChar::requiresSurrogates(typed[0]) ? 2 : 1));
    }
    event->accept();
}

bool CGridCtrl::focusNextPrevChild(bool next) {
    if (handleTabKey_ && !tabLeavesGrid_ && IsValid(focusCell_)) return false;
    return QAbstractScrollArea::focusNextPrevChild(next);
}

// Who comes by the keyboard finds a cell to go on from.
void CGridCtrl::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    const bool isByKey = event->reason() == Qt::TabFocusReason ||
                         event->reason() == Qt::BacktabFocusReason ||
                         event->reason() == Qt::ShortcutFocusReason;
    if (!isByKey || IsValid(focusCell_)) return;
    const int row = rowHeights_.NextShown(fixedRows_),
              column = columnWidths_.NextShown(fixedColumns_);
    if (IsValid(row, column)) MoveFocus({row, column}, Qt::NoModifier);
}

}  // namespace sg::grid
