#include <QPaintEvent>
#include <QPainter>

#include "grid/grid_ctrl.h"

// Painting. The toolkit paints into a buffer and shows it when it is whole.
namespace sg::grid {

void CGridCtrl::paintEvent(QPaintEvent* event) {
    if (isLayoutStale_) LayOut();
    QPainter painter(viewport());
    OnDraw(painter, event->rect());
}

// Each of the four areas: plain cells, fixed columns, fixed rows, and the corner, which are drawn
// in this order with what lies outside an area cut off.
void CGridCtrl::OnDraw(QPainter& painter, const QRect& clip) {
    painter.fillRect(clip, palette().color(QPalette::Window));
    if (GetRowCount() == 0 || GetColumnCount() == 0) return;
    const QRect all = viewport()->rect();
    const QRect plain = PlainArea();
    const int top = TopRow(), left = LeftColumn();
    const int lastRow = std::min(top + RowsInPage(top), GetRowCount() - 1);
    const int lastColumn = std::min(left + ColumnsInPage(left), GetColumnCount() - 1);
    const QRect leftArea(0, plain.top(), plain.left(), plain.height());
    const QRect topArea(plain.left(), 0, plain.width(), plain.top());
    const QRect corner(0, 0, plain.left(), plain.top());
    DrawArea(painter, {top, left, lastRow, lastColumn}, plain & all, clip);
    DrawArea(painter, {top, 0, lastRow, fixedColumns_ - 1}, leftArea & all, clip);
    DrawArea(painter, {0, left, fixedRows_ - 1, lastColumn}, topArea & all, clip);
    DrawArea(painter, {0, 0, fixedRows_ - 1, fixedColumns_ - 1}, corner & all, clip);
}

void CGridCtrl::DrawArea(QPainter& painter, const CCellRange& cells, const QRect& area,
                         const QRect& clip) {
    const QRect seen = area & clip;
    if (!cells.IsValid() || seen.isEmpty()) return;
    painter.setClipRect(seen);
    const QRect whole = RangeRect(cells).adjusted(0, 0, 1, 1);
    const CGridDefaultCell& defaults =
        GetDefaultCell(cells.maxRow < fixedRows_, cells.maxCol < fixedColumns_);
    painter.fillRect(whole & seen, toQColor(defaults.GetBackClr()));
    DrawLines(painter, cells, area, clip);
    int y = whole.top();
    for (int row = cells.minRow; row <= cells.maxRow && y <= seen.bottom(); ++row) {
        const int height = rowHeights_[row];
        if (height == 0) {
            // Many rows may be hidden one behind the other.
            const int next = rowHeights_.NextShown(row);
            if (next < 0) break;
            row = next - 1;
            continue;
        }
        if (y + height > seen.top()) {
            int x = whole.left();
            for (int column = cells.minCol; column <= cells.maxCol && x <= seen.right(); ++column) {
                const int width = columnWidths_[column];
                if (width > 0 && x + width > seen.left()) {
                    CGridCellBase& cell = *GetCell(row, column);
                    if (!cell.IsMerged()) {
                        cell.Draw(painter, row, column, {x, y, width - 1, height - 1}, false);
                    }
                }
                x += width;
            }
        }
        y += height;
    }
    DrawBlocks(painter, cells, area, clip);
    painter.setClipping(false);
}

// In the last pixel of each row and column. Headings have edges instead.
void CGridCtrl::DrawLines(QPainter& painter, const CCellRange& cells, const QRect& area,
                          const QRect& clip) {
    if (cells.minRow < fixedRows_ || cells.minCol < fixedColumns_) return;
    const QRect whole = RangeRect(cells).adjusted(0, 0, 1, 1) & area & clip;
    painter.setPen(toQColor(gridLineColour_));
    if ((gridLines_ & kHorizontalLines) != 0) {
        int64_t y = RowTop(cells.minRow) - 1;
        for (int row = cells.minRow; row <= cells.maxRow && row >= 0;
             row = rowHeights_.NextShown(row + 1)) {
            y += rowHeights_[row];
            painter.drawLine(whole.left(), int(y), whole.right(), int(y));
        }
    }
    if ((gridLines_ & kVerticalLines) == 0) return;
    int64_t x = ColumnLeft(cells.minCol) - 1;
    for (int column = cells.minCol; column <= cells.maxCol; ++column) {
        x += columnWidths_[column];
        painter.drawLine(int(x), whole.top(), int(x), whole.bottom());
    }
}

// They cover the lines within them, and may begin further up or left than what is seen.
void CGridCtrl::DrawBlocks(QPainter& painter, const CCellRange& cells, const QRect& area,
                           const QRect& clip) {
    for (const CCellRange& block : blocks_) {
        const CCellID first = block.TopLeft();
        const bool isFixedRow = cells.maxRow < fixedRows_,
                   isFixedColumn = cells.maxCol < fixedColumns_;
        if ((first.row < fixedRows_) != isFixedRow ||
            (first.col < fixedColumns_) != isFixedColumn) {
            continue;
        }
        const QRect rect = RangeRect(block);
        if (!block.Intersects(cells) || !rect.intersects(area & clip)) continue;
        GetCell(first.row, first.col)->Draw(painter, first.row, first.col, rect, true);
    }
}

}  // namespace sg::grid
