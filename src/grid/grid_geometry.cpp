#include <QCoreApplication>
#include <QEvent>
#include <QResizeEvent>
#include <QScrollBar>

#include <limits>

#include "grid/grid_ctrl.h"
#include "grid/title_tip.h"

// Where cells are in the viewport. The fixed cells stand at its left and upper edges; the others
// are scrolled by whole rows and columns, the top left one of them always being seen from its
// start.
namespace sg::grid {
namespace {

constexpr int kResizeCaptureRange = 7;  // pixels either side of a dividing line

int clamped(int64_t pixels) {
    constexpr int64_t most = std::numeric_limits<int>::max() / 2;
    return int(std::clamp(pixels, -most, most));
}

// The first item from `fixed` on that begins at the scrolled position or behind it; the last one
// that is shown when none does.
int firstFrom(const AxisSizes& sizes, int fixed, int64_t position) {
    const int64_t start = sizes.Start(fixed) + position;
    int item = std::max(sizes.At(start), fixed);
    if (item < sizes.Count() && sizes.Start(item) < start) {
        const int next = sizes.NextShown(item + 1);
        if (next >= 0) item = next;
    }
    if (item >= sizes.Count()) item = std::max(sizes.PreviousShown(sizes.Count() - 1), fixed);
    return item;
}

// Sets a scroll bar up for what does not fit into the page.
void setUp(QScrollBar& bar, const AxisSizes& sizes, int fixed, int room, int step) {
    const int64_t total = sizes.Total() - sizes.Start(fixed);
    const int page = std::max(room - clamped(sizes.Start(fixed)), 1);
    int64_t last = 0;
    if (total > page) {
        last = sizes.Start(firstFrom(sizes, fixed, total - page)) - sizes.Start(fixed);
    }
    bar.setSingleStep(std::max(step, 1));
    bar.setPageStep(page);
    bar.setRange(0, clamped(last));
}

// The item whose end lies close to the pixel, of those from `first` on behind the fixed ones; -1:
// none.
int itemEndingAt(const AxisSizes& sizes, int fixed, int first, int pixel) {
    const int64_t fixedEnd = sizes.Start(fixed);
    const int64_t scrolled = sizes.Start(first) - fixedEnd;
    for (const int place : {pixel - kResizeCaptureRange, pixel}) {
        if (place < 0) continue;
        const int item = sizes.At(place < fixedEnd ? place : place + scrolled);
        if (item >= sizes.Count()) continue;
        const int64_t end = sizes.Start(item + 1) - (item < fixed ? 0 : scrolled) - 1;
        if (std::abs(pixel - end) <= kResizeCaptureRange) return item;
    }
    return -1;
}

}  // namespace

void CGridCtrl::NeedLayout() {
    if (isBeingDestroyed_) return;
    viewport()->update();
    if (isLayoutStale_) return;
    isLayoutStale_ = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
}

void CGridCtrl::LayOut() const {
    isLayoutStale_ = false;
    const CGridDefaultCell& plain = GetDefaultCell(false, false);
    setUp(*verticalScrollBar(), rowHeights_, fixedRows_, viewport()->height(), plain.GetHeight());
    setUp(*horizontalScrollBar(), columnWidths_, fixedColumns_, viewport()->width(),
          plain.GetWidth());
}

void CGridCtrl::ResetScrollBars() {
    LayOut();
    Refresh();
}

void CGridCtrl::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    LayOut();
}

// Whole rows and columns move, so that all is painted again.
void CGridCtrl::scrollContentsBy(int, int) {
    if (isBeingDestroyed_) return;
    EndEditing();
    if (titleTip_) titleTip_->Hide();
    viewport()->update();
}

int CGridCtrl::TopRow() const {
    if (isLayoutStale_) LayOut();
    return firstFrom(rowHeights_, fixedRows_, verticalScrollBar()->value());
}

int CGridCtrl::LeftColumn() const {
    if (isLayoutStale_) LayOut();
    return firstFrom(columnWidths_, fixedColumns_, horizontalScrollBar()->value());
}

CCellID CGridCtrl::GetTopleftNonFixedCell() const {
    return {TopRow(), LeftColumn()};
}

int64_t CGridCtrl::RowTop(int row) const {
    if (row < fixedRows_) return rowHeights_.Start(row);
    return rowHeights_.Start(fixedRows_) + rowHeights_.Start(row) - rowHeights_.Start(TopRow());
}

int64_t CGridCtrl::ColumnLeft(int column) const {
    if (column < fixedColumns_) return columnWidths_.Start(column);
    return columnWidths_.Start(fixedColumns_) + columnWidths_.Start(column) -
           columnWidths_.Start(LeftColumn());
}

// Without the last line at the right and below.
QRect CGridCtrl::RangeRect(const CCellRange& range) const {
    const int left = clamped(ColumnLeft(range.minCol));
    const int top = clamped(RowTop(range.minRow));
    const int right = clamped(ColumnLeft(range.maxCol) + columnWidths_[range.maxCol]);
    const int bottom = clamped(RowTop(range.maxRow) + rowHeights_[range.maxRow]);
    return {left, top, right - left - 1, bottom - top - 1};
}

QRect CGridCtrl::PlainArea() const {
    const QRect all = viewport()->rect();
    return {
        QPoint(clamped(columnWidths_.Start(fixedColumns_)), clamped(rowHeights_.Start(fixedRows_))),
        all.bottomRight()};
}

bool CGridCtrl::GetCellRect(int row, int column, QRect& rect) const {
    const CGridCellBase* const cell = GetCell(row, column);
    if (cell == nullptr) return false;
    if (cell->IsMerged()) {
        rect = RangeRect(cell->GetMergeRange());
        const bool isScrolledOff = (row >= fixedRows_ && rect.bottom() < PlainArea().top()) ||
                                   (column >= fixedColumns_ && rect.right() < PlainArea().left());
        return !rect.isEmpty() && !isScrolledOff;
    }
    if (rowHeights_[row] == 0 || columnWidths_[column] == 0) return false;
    if (row >= fixedRows_ && row < TopRow()) return false;
    if (column >= fixedColumns_ && column < LeftColumn()) return false;
    rect = RangeRect({row, column, row, column});
    return true;
}

CCellID CGridCtrl::GetCellFromPt(QPoint point) const {
    if (point.x() < 0 || point.y() < 0 || GetRowCount() == 0 || GetColumnCount() == 0) return {};
    const int64_t fixedWidth = columnWidths_.Start(fixedColumns_);
    const int64_t fixedHeight = rowHeights_.Start(fixedRows_);
    CCellID id;
    id.row = point.y() < fixedHeight
                 ? rowHeights_.At(point.y())
                 : rowHeights_.At(point.y() - fixedHeight + rowHeights_.Start(TopRow()));
    id.col = point.x() < fixedWidth
                 ? columnWidths_.At(point.x())
                 : columnWidths_.At(point.x() - fixedWidth + columnWidths_.Start(LeftColumn()));
    const CGridCellBase* const cell = GetCell(id.row, id.col);
    if (cell == nullptr) return {};
    return cell->IsMergedIntoOther() ? cell->GetMergeCell() : id;
}

// Of rows from `top` that fit into the page as a whole; at least one.
int CGridCtrl::RowsInPage(int top) const {
    const int64_t end = rowHeights_.Start(top) + PlainArea().height();
    int row = rowHeights_.At(end);
    if (row >= GetRowCount()) return GetRowCount() - top;
    return std::max(row - top, 1);
}

int CGridCtrl::ColumnsInPage(int left) const {
    const int64_t end = columnWidths_.Start(left) + PlainArea().width();
    const int column = columnWidths_.At(end);
    if (column >= GetColumnCount()) return GetColumnCount() - left;
    return std::max(column - left, 1);
}

void CGridCtrl::ScrollToRow(int row) {
    if (isLayoutStale_) LayOut();
    verticalScrollBar()->setValue(clamped(rowHeights_.Start(row) - rowHeights_.Start(fixedRows_)));
}

void CGridCtrl::ScrollToColumn(int column) {
    if (isLayoutStale_) LayOut();
    horizontalScrollBar()->setValue(
        clamped(columnWidths_.Start(column) - columnWidths_.Start(fixedColumns_)));
}

// Scrolls as little as is needed.
void CGridCtrl::EnsureVisible(int row, int column) {
    if (!IsValid(row, column)) return;
    if (row >= fixedRows_) {
        if (row < TopRow()) {
            ScrollToRow(row);
        } else {
            const int64_t top = rowHeights_.Start(row + 1) - PlainArea().height();
            if (rowHeights_.Start(TopRow()) < top) {
                const int first =
                    firstFrom(rowHeights_, fixedRows_, top - rowHeights_.Start(fixedRows_));
                ScrollToRow(std::min(first, row));
            }
        }
    }
    if (column < fixedColumns_) return;
    if (column < LeftColumn()) {
        ScrollToColumn(column);
        return;
    }
    const int64_t left = columnWidths_.Start(column + 1) - PlainArea().width();
    if (columnWidths_.Start(LeftColumn()) < left) {
        const int first =
            firstFrom(columnWidths_, fixedColumns_, left - columnWidths_.Start(fixedColumns_));
        ScrollToColumn(std::min(first, column));
    }
}

int CGridCtrl::SizedColumnAt(QPoint point) const {
    if (!allowColumnResize_ || point.y() >= FixedHeight() || point.y() < 0) return -1;
    return itemEndingAt(columnWidths_, fixedColumns_, LeftColumn(), point.x());
}

int CGridCtrl::SizedRowAt(QPoint point) const {
    if (!allowRowResize_ || point.x() >= FixedWidth() || point.x() < 0) return -1;
    return itemEndingAt(rowHeights_, fixedRows_, TopRow(), point.y());
}

}  // namespace sg::grid
