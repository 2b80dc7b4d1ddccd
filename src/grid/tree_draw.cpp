#include <QPainter>

#include "grid/grid_ctrl.h"
#include "grid/tree_cell.h"
#include "grid/tree_column.h"

// The graphic of a tree: lines between rows, and a box to fold those with children.
namespace sg::grid {
namespace {

constexpr int kSmallestIndent = 6;  // with which anything is drawn
enum TreeImage { kExpanded = 0, kCollapsed = 1, kLeaf = 2 };

QPen dotted(const QColor& colour) {
    QPen pen(colour, 1);
    pen.setDashPattern({1, 1});
    pen.setCapStyle(Qt::FlatCap);
    return pen;
}

}  // namespace

void CGridTreeCellBase::DrawContents(CellCanvas& canvas) {
    row_ = canvas.row;
    DrawGraphic(canvas);
    DrawText(canvas, false);
}

void CGridTreeCellBase::DrawTreeImage(CellCanvas& canvas, int image) {
    if (!tree_->GetTreeImages()) return;
    SetImage(tree_->GetImageOffset() + image);
    const QRect room = canvas.cell.adjusted(GetLevel() * tree_->GetIndent() + 1, 0, 0, 0);
    grid_->DrawImage(canvas.painter, GetImage(), room);
}

void CGridTreeCellBase::DrawGraphic(CellCanvas& canvas) {
    if (tree_ == nullptr || tree_->GetIndent() < kSmallestIndent) return;
    if (GetLevel() == 0) {
        DrawTreeImage(canvas, kLeaf);
        return;
    }
    const TreeRowLook look = tree_->LookOf(canvas.row);
    const QRect box(canvas.cell.left() + (GetLevel() - 1) * tree_->GetIndent() + 2,
                    canvas.cell.top() + 4, 9, 9);
    canvas.painter.save();
    canvas.painter.setClipRect(canvas.cell.adjusted(0, 0, 0, 1), Qt::IntersectClip);
    if (tree_->GetTreeLines()) DrawRails(canvas, look, box);
    if (look.hasChildren) DrawBox(canvas, look.isCollapsed, box);
    canvas.painter.restore();
    DrawTreeImage(canvas, look.isCollapsed ? kCollapsed : look.hasChildren ? kExpanded : kLeaf);
}

// The left rail leads to the row from its parent; those of its ancestors lead past it.
void CGridTreeCellBase::DrawRails(CellCanvas& canvas, const TreeRowLook& look,
                                  const QRect& box) const {
    QPainter& painter = canvas.painter;
    painter.setPen(dotted(toQColor(tree_->GetLineColour())));
    const QPoint centre = box.center();
    const int top = canvas.cell.top(), bottom = canvas.cell.bottom() + 1;
    int rail = centre.x() - tree_->GetIndent();
    if (canvas.row == tree_->GetTotalRows() - 1) {
        painter.drawLine(rail, top, rail, centre.y());
        painter.drawLine(rail, centre.y(), box.right(), centre.y());
        return;
    }
    if (GetLevel() > 1) {
        painter.drawLine(rail, centre.y(), look.hasChildren ? box.left() : centre.x(), centre.y());
        painter.drawLine(rail, top, rail, look.isLast ? centre.y() : bottom);
    }
    if (look.hasChildren && !look.isCollapsed) {
        painter.drawLine(centre.x(), box.bottom(), centre.x(), bottom);
    }
    for (int level = GetLevel() - 1; level >= 2; --level) {
        rail -= tree_->GetIndent();
        if (look.rails[size_t(level)]) painter.drawLine(rail, top, rail, bottom);
    }
}

// A plus in the box of a folded row, else a minus.
void CGridTreeCellBase::DrawBox(CellCanvas& canvas, bool isCollapsed, const QRect& box) const {
    QPainter& painter = canvas.painter;
    if (canvas.cell.contains(box)) {
        painter.setPen(toQColor(tree_->GetLineColour()));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(box.adjusted(0, 0, -1, -1));
    }
    painter.setPen(canvas.textColour);
    const QPoint centre = box.center();
    painter.drawLine(box.left() + 2, centre.y(), box.right() - 2, centre.y());
    if (isCollapsed) painter.drawLine(centre.x(), box.top() + 2, centre.x(), box.bottom() - 2);
}

void CGridTreeBtnCell::DrawContents(CellCanvas& canvas) {
    DrawGraphic(canvas);
    canvas.rect.setLeft(canvas.rect.left() + GraphicWidth());
    buttons_.Draw(canvas, *GetGrid(), GetMarginX());
    // The text's rectangle leaves the graphic out once more.
    canvas.rect.setLeft(canvas.rect.left() - GraphicWidth());
    if (!canvas.rect.isEmpty()) DrawText(canvas, false);
}

}  // namespace sg::grid
