#include <QPainter>
#include <QPolygon>

#include <algorithm>

#include "grid/cell_base.h"
#include "grid/cell_text.h"
#include "grid/default_cell.h"
#include "grid/grid_ctrl.h"

// How a cell draws itself.
namespace sg::grid {
namespace {

// A raised edge, or a sunken one.
void drawEdge(QPainter& painter, const QRect& rect, const QPalette& palette, bool isPressed) {
    const QColor light = palette.color(QPalette::Light);
    const QColor dark = palette.color(QPalette::Shadow);
    painter.setPen(isPressed ? dark : light);
    painter.drawLine(rect.topLeft(), rect.topRight());
    painter.drawLine(rect.topLeft(), rect.bottomLeft());
    painter.setPen(isPressed ? light : dark);
    painter.drawLine(rect.bottomLeft(), rect.bottomRight());
    painter.drawLine(rect.topRight(), rect.bottomRight());
}

// The triangle that tells by which column, and in which direction, rows are sorted.
void drawTriangle(QPainter& painter, const QRect& square, bool isUp, const QColor& colour) {
    const int middle = (square.left() + square.right()) / 2;
    const QPolygon points =
        isUp ? QPolygon({square.bottomLeft(), square.bottomRight(), {middle, square.top()}})
             : QPolygon({square.topLeft(), square.topRight(), {middle, square.bottom()}});
    painter.setPen(colour);
    painter.drawPolygon(points);
}

void drawSortMark(CellCanvas& canvas, const CGridCtrl& grid, const QFont& font) {
    const int size = std::min(grid.Texts().Height(font) - 4, canvas.rect.height() - 4);
    if (size < 2 || size >= canvas.rect.width()) return;
    const bool isHeavy = font.weight() >= QFont::Black;
    const int left = isHeavy ? canvas.rect.center().x() - size / 2 : canvas.rect.right() - size;
    const QRect square(left, canvas.rect.bottom() - 2 - size, size, size);
    const QPalette& palette = grid.palette();
    const bool isUp = grid.GetSortAscending();
    drawTriangle(canvas.painter, square.translated(1, 1), isUp, palette.color(QPalette::Dark));
    drawTriangle(canvas.painter, square, isUp, palette.color(QPalette::Light));
    if (!isHeavy) canvas.rect.setRight(canvas.rect.right() - size);
}

}  // namespace

const QFont& CGridCellBase::DrawingFont() const {
    const QFont* const printing = GetGrid()->GetPrintFont();
    return printing != nullptr ? *printing : GetFont();
}

bool CGridCellBase::Draw(QPainter& painter, int row, int col, QRect rect, bool eraseBackground) {
    if (!IsShown()) return true;
    if (GetGrid() == nullptr || !painter.isActive() || rect.isEmpty()) return false;
    CellCanvas canvas{painter, row, col, rect, rect, {}};
    DrawBackground(canvas, eraseBackground || HasOwnBackClr());
    DrawContents(canvas);
    return true;
}

void CGridCellBase::DrawBackground(CellCanvas& canvas, bool erase) const {
    const CGridCtrl& grid = *GetGrid();
    const QPalette& palette = grid.palette();
    const int lines = grid.GetGridLines();
    const QRect filled = canvas.rect.adjusted(0, 0, (lines & kVerticalLines) != 0 ? 0 : 1,
                                              (lines & kHorizontalLines) != 0 ? 0 : 1);
    const bool isMarked = IsFocused() || IsDropHighlighted();
    if (IsSelected()) {
        canvas.textColour = palette.color(QPalette::HighlightedText);
        canvas.painter.fillRect(filled, palette.color(QPalette::Highlight));
    } else {
        canvas.textColour = toQColor(GetTextClr());
        if (erase) canvas.painter.fillRect(filled, toQColor(GetBackClr()));
    }
    if (isMarked) {
        if (grid.GetFrameFocus()) {
            canvas.painter.setPen(canvas.textColour);
            canvas.painter.setBrush(Qt::NoBrush);
            canvas.painter.drawRect(canvas.rect.adjusted(0, 0, -1, -1));
        }
        if (lines == kNoLines) canvas.rect.adjust(1, 1, -1, -1);
    }
    if (IsFixed() && lines != kNoLines) {
        const CCellID focus = grid.GetFocusCell();
        const bool isPressed = grid.GetTrackFocusCell() && grid.GetPrintFont() == nullptr &&
                               focus.IsValid() &&
                               ((IsFixedCol() && focus.row == canvas.row) ||
                                (IsFixedRow() && focus.col == canvas.col));
        drawEdge(canvas.painter, canvas.rect, palette, isPressed);
        canvas.rect.adjust(1, 1, -1, -1);
    }
}

void CGridCellBase::DrawText(CellCanvas& canvas, bool withImage) const {
    const CGridCtrl& grid = *GetGrid();
    const QFont& font = DrawingFont();
    QRect& rect = canvas.rect;
    const bool isOdd = rect.height() % 2 != 0;
    rect.adjust(GetMarginX(), GetMarginY(), -GetMarginX() + 1, -GetMarginY() - (isOdd ? 1 : 0));
    if (withImage && GetImage() >= 0) grid.DrawImage(canvas.painter, GetImage(), rect);
    if (canvas.row == 0 && canvas.col == grid.GetSortColumn()) drawSortMark(canvas, grid, font);
    const QRect text = GetTextRect(rect);
    if (text.isEmpty()) return;
    canvas.painter.setPen(canvas.textColour);
    grid.Texts().Draw(canvas.painter, font, text.adjusted(0, -1, 1, 2), GetText(),
                      GetFormat() | kTextNoPrefix);
}

bool CGridCellBase::PrintCell(QPainter& painter, int row, int col, QRect rect) {
    const uint32_t state = GetState();
    SetState(state & ~uint32_t(GVIS_FOCUSED | GVIS_SELECTED | GVIS_DROPHILITED));
    const bool isDrawn = Draw(painter, row, col, rect, false);
    SetState(state);
    return isDrawn;
}

}  // namespace sg::grid
