#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <utility>

#include "grid/grid_ctrl.h"
#include "grid/title_tip.h"

// The mouse.
namespace sg::grid {
namespace {

constexpr int kDragTimerInterval = 25;  // milliseconds
constexpr int kNotch = 120;             // of a wheel
constexpr int kSmallest = 1;            // pixels that a row or column can be dragged to

}  // namespace

QPoint CGridCtrl::InCell(CCellID id, QPoint point) const {
    QRect rect;
    return GetCellRect(id.row, id.col, rect) ? point - rect.topLeft() : QPoint(-1, -1);
}

bool CGridCtrl::BeginSizing(QPoint point) {
    const int column = SizedColumnAt(point);
    const int row = column < 0 ? SizedRowAt(point) : -1;
    if (column < 0 && row < 0) return false;
    mouseMode_ = column >= 0 ? MouseMode::SizingColumn : MouseMode::SizingRow;
    sizedItem_ = column >= 0 ? column : row;
    return true;
}

void CGridCtrl::Size(QPoint point) {
    if (mouseMode_ == MouseMode::SizingColumn && sizedItem_ < GetColumnCount()) {
        SetColumnWidth(sizedItem_,
                       std::max(point.x() - int(ColumnLeft(sizedItem_)) + 1, kSmallest));
    } else if (mouseMode_ == MouseMode::SizingRow && sizedItem_ < GetRowCount()) {
        SetRowHeight(sizedItem_, std::max(point.y() - int(RowTop(sizedItem_)) + 1, kSmallest));
    }
}

void CGridCtrl::mousePressEvent(QMouseEvent* event) {
    if (titleTip_) titleTip_->Hide();
    if (event->button() != Qt::LeftButton) return;
    EndEditing();
    setFocus(Qt::MouseFocusReason);
    isDoubleClick_ = false;
    const QPoint point = event->position().toPoint();
    if (BeginSizing(point)) return;
    const CCellID id = GetCellFromPt(point);
    if (id.IsValid()) PressCell(id, point, event->modifiers());
}

void CGridCtrl::PressCell(CCellID id, QPoint point, Qt::KeyboardModifiers modifiers) {
    const CellWatch watch(*this, GetCell(id.row, id.col), id);
    pressedCell_ = id;
    const auto held = modifiers & (Qt::ShiftModifier | Qt::ControlModifier);
    if (id.row < fixedRows_) {
        mouseMode_ = MouseMode::SelectColumn;
        OnFixedRowClick(id);
    } else if (id.col < fixedColumns_) {
        mouseMode_ = MouseMode::SelectRow;
        OnFixedColumnClick(id);
    } else if (id == focusCell_ && held == 0) {
        mouseMode_ = MouseMode::PrepareEdit;
        previousSelection_.Clear();
        selectionStart_ = id;
        SelectRangeByUser({id.row, id.col, id.row, id.col}, false);
    } else {
        mouseMode_ = MouseMode::SelectCells;
        previousSelection_.Clear();
        if ((held & Qt::ControlModifier) != 0) previousSelection_ = selection_;
        MoveFocus(id, modifiers);
    }
    if (watch.Cell() == nullptr) return;
    const CCellID now = watch.Place();
    CellForEvent(now)->OnClickDown(InCell(now, point));
}

void CGridCtrl::OnFixedColumnClick(CCellID cell) {
    if (!fixedRowSelection_) return;
    const CCellRange all{fixedRows_, fixedColumns_, GetRowCount() - 1, GetColumnCount() - 1};
    CCellRange rows = all;
    if (cell.row >= fixedRows_) rows.minRow = rows.maxRow = cell.row;
    if (!rows.IsValid()) return;
    TellChanging(focusCell_);
    if (!IsValid(rows.maxRow, rows.maxCol)) return;  // the owner deleted rows
    SetFocusCell(rows.minRow, std::max(columnWidths_.NextShown(rows.minCol), rows.minCol));
    selectionStart_ = rows.TopLeft();
    SetSelectedRange(rows);
    TellChanged(focusCell_);
}

void CGridCtrl::OnFixedRowClick(CCellID cell) {
    if (isListMode_) {
        Tell(&GridListener::OnFixedRowClick, cell);
        return;
    }
    if (!fixedColumnSelection_) return;
    CCellRange columns{fixedRows_, fixedColumns_, GetRowCount() - 1, GetColumnCount() - 1};
    if (cell.col >= fixedColumns_) columns.minCol = columns.maxCol = cell.col;
    if (!columns.IsValid()) return;
    TellChanging(focusCell_);
    if (!IsValid(columns.maxRow, columns.maxCol)) return;
    SetFocusCell(std::max(rowHeights_.NextShown(columns.minRow), columns.minRow), columns.minCol);
    selectionStart_ = columns.TopLeft();
    SetSelectedRange(columns);
    TellChanged(focusCell_);
}

void CGridCtrl::mouseMoveEvent(QMouseEvent* event) {
    const QPoint point = event->position().toPoint();
    if ((event->buttons() & Qt::LeftButton) == 0) LosePress();
    switch (mouseMode_) {
        case MouseMode::SizingColumn:
        case MouseMode::SizingRow:
            Size(point);
            break;
        case MouseMode::PrepareEdit:
            if (GetCellFromPt(point) == pressedCell_) break;
            mouseMode_ = MouseMode::SelectCells;
            [[fallthrough]];
        case MouseMode::SelectCells:
            if (!dragTimer_.isActive()) dragTimer_.start(kDragTimerInterval, this);
            dragPoint_ = point;
            DragTo(GetCellFromPt(point));
            break;
        case MouseMode::Nothing:
            HoverAt(point);
            break;
        default:
            break;
    }
}

// Another window took the mouse while the button was down: nothing was clicked.
void CGridCtrl::LosePress() {
    if (mouseMode_ == MouseMode::Nothing) return;
    dragTimer_.stop();
    mouseMode_ = MouseMode::Nothing;
    if (CGridCellBase* const cell = CellForEvent(std::exchange(pressedCell_, {}))) {
        cell->OnMouseLeave();
    }
}

void CGridCtrl::DragTo(CCellID id) {
    if (!IsValid(id) || !IsPlain(id) || id == focusCell_) return;
    const Qt::KeyboardModifiers kept =
        previousSelection_.IsEmpty() ? Qt::NoModifier : Qt::ControlModifier;
    MoveFocus(id, Qt::ShiftModifier | kept);
}

void CGridCtrl::timerEvent(QTimerEvent* event) {
    if (event->timerId() == dragTimer_.timerId()) {
        ScrollWhileDragging();
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

// With the pointer outside, a step of the keyboard brings the next row or column into view, and the
// selection reaches to what lies at the edge.
void CGridCtrl::ScrollWhileDragging() {
    if (mouseMode_ != MouseMode::SelectCells) {
        dragTimer_.stop();
        return;
    }
    const QPoint pointer = dragPoint_;
    const QRect plain = PlainArea();
    int key = 0;
    if (pointer.y() > plain.bottom()) key = Qt::Key_Down;
    if (pointer.y() < plain.top()) key = Qt::Key_Up;
    if (key == 0 && pointer.x() > plain.right()) key = Qt::Key_Right;
    if (key == 0 && pointer.x() < plain.left()) key = Qt::Key_Left;
    if (key == 0) return;
    QKeyEvent step(QEvent::KeyPress, key, Qt::ShiftModifier);
    HandleKey(step);
    const QPoint edge(std::clamp(pointer.x(), plain.left(), std::max(plain.left(), plain.right())),
                      std::clamp(pointer.y(), plain.top(), std::max(plain.top(), plain.bottom())));
    DragTo(GetCellFromPt(edge));
}

void CGridCtrl::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint point = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        const CCellID id = GetCellFromPt(point);
        if (!id.IsValid()) return;
        CellForEvent(id)->OnRClick(InCell(id, point));
        Tell(&GridListener::OnRightClick, id);
    } else if (event->button() == Qt::LeftButton) {
        EndPress(point);
    }
}

void CGridCtrl::EndPress(QPoint point) {
    dragTimer_.stop();
    const MouseMode mode = std::exchange(mouseMode_, MouseMode::Nothing);
    const CCellID pressed = std::exchange(pressedCell_, {});
    previousSelection_.Clear();
    if (mode == MouseMode::SizingColumn || mode == MouseMode::SizingRow) return;
    CGridCellBase* cell = CellForEvent(pressed);
    if (cell == nullptr) return;
    const CellWatch watch(*this, cell, pressed);
    const CCellID id = GetCellFromPt(point);
    const QPoint inCell = InCell(pressed, point);
    if (id != pressed) {
        cell->OnMouseLeave();
    } else if (!isDoubleClick_) {
        cell->OnClick(inCell);
    }
    if (watch.Grid() == nullptr) return;
    // A drag that ends on a heading or beside all cells clicks where it began.
    const bool isOnCell = id == pressed || (IsValid(id) && IsPlain(id));
    Tell(&GridListener::OnClick, isOnCell ? id : pressed);
    cell = watch.Cell();
    if (cell == nullptr || mode != MouseMode::PrepareEdit || id != pressed) return;
    const CCellID now = watch.Place();
    if (now == focusCell_ && !cell->TakesClick(inCell)) {
        OnEditCell(now.row, now.col, inCell, kEditByClick);
    }
}

void CGridCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    EndEditing();
    const QPoint point = event->position().toPoint();
    const int column = SizedColumnAt(point);
    if (column >= 0) AutoSizeColumn(column, autoSizeStyle_);
    if (column >= 0 || SizedRowAt(point) >= 0) return;
    const CCellID id = GetCellFromPt(point);
    CGridCellBase* const cell = CellForEvent(id);
    if (cell == nullptr) return;
    const CellWatch watch(*this, cell, id);
    cell->OnDblClick(InCell(id, point));
    if (watch.Grid() == nullptr) return;
    Tell(&GridListener::OnDoubleClick, id);
    if (watch.Cell() == nullptr) return;
    isDoubleClick_ = true;
    pressedCell_ = watch.Place();
    mouseMode_ = pressedCell_ == focusCell_ ? MouseMode::PrepareEdit : MouseMode::Nothing;
}

void CGridCtrl::HoverAt(QPoint point) {
    const CCellID id = GetCellFromPt(point);
    if (id != hoveredCell_) {
        if (CGridCellBase* const left = CellForEvent(hoveredCell_)) left->OnMouseLeave();
        hoveredCell_ = id;
        if (CGridCellBase* const entered = CellForEvent(id)) entered->OnMouseEnter();
    }
    CGridCellBase* const cell = CellForEvent(id);
    if (cell != nullptr) cell->OnMouseOver();
    if (SizedColumnAt(point) >= 0) {
        viewport()->setCursor(Qt::SplitHCursor);
    } else if (SizedRowAt(point) >= 0) {
        viewport()->setCursor(Qt::SplitVCursor);
    } else if (cell == nullptr || !cell->OnSetCursor()) {
        viewport()->setCursor(Qt::ArrowCursor);
    }
}

void CGridCtrl::ScrollRows(int rows) {
    int top = TopRow();
    for (; rows > 0; --rows) {
        const int next = rowHeights_.NextShown(top + 1);
        if (next < 0) break;
        top = next;
    }
    for (; rows < 0; ++rows) {
        const int previous = rowHeights_.PreviousShown(top - 1);
        if (previous < fixedRows_) break;
        top = previous;
    }
    ScrollToRow(top);
}

void CGridCtrl::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    if (std::abs(turned.x()) > std::abs(turned.y())) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    event->accept();
    // What is left of a notch counts with the next one in the same direction.
    if ((wheelRest_ > 0) != (turned.y() > 0)) wheelRest_ = 0;
    wheelRest_ += turned.y() * wheelLines_;
    const int rows = wheelRest_ / kNotch;
    wheelRest_ -= rows * kNotch;
    if (rows != 0) ScrollRows(-rows);
}

bool CGridCtrl::viewportEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::ToolTip:
            return ShowTip(static_cast<QHelpEvent*>(event)->pos());
        case QEvent::Leave:
            if (mouseMode_ == MouseMode::Nothing) HoverAt({-1, -1});
            break;
        default:
            break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

}  // namespace sg::grid
