#include "grid/combo_cell.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>

#include "grid/grid_ctrl.h"
#include "grid/in_place_list.h"

namespace sg::grid {
namespace {

constexpr int kArrowWidth = 17;

}  // namespace

QRect dropArrowRect(const QRect& cell) {
    const int width = std::min(kArrowWidth, cell.width());
    return {cell.right() - width + 1, cell.top(), width, cell.height()};
}

void drawDropArrow(QPainter& painter, const CGridCtrl& grid, const QRect& arrow, bool isPushed) {
    QStyleOption option;
    option.initFrom(&grid);
    option.rect = arrow;
    option.state.setFlag(QStyle::State_Sunken, isPushed);
    option.state.setFlag(QStyle::State_Raised, !isPushed);
    option.state.setFlag(QStyle::State_HasFocus, false);
    grid.style()->drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, &grid);
    option.rect = arrow.adjusted(4, 4, -4, -4);
    grid.style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &option, &painter, &grid);
}

void CGridCellCombo::SetOptions(std::vector<std::wstring> options, std::vector<intptr_t> data) {
    data.resize(options.size());
    options_ = std::make_shared<GridOptions>(GridOptions{std::move(options), std::move(data)});
}

std::shared_ptr<const GridOptions> CGridCellCombo::noOptions() {
    static const auto none = std::make_shared<const GridOptions>();
    return none;
}

void CGridCellCombo::CopyFrom(const CGridCellBase& source) {
    CGridCell::CopyFrom(source);
    if (const auto* const combo = dynamic_cast<const CGridCellCombo*>(&source)) {
        options_ = combo->options_;
        style_ = combo->style_;
    }
}

QSize CGridCellCombo::GetCellExtent() const {
    return CGridCell::GetCellExtent() + QSize(kArrowWidth, 0);
}

void CGridCellCombo::DrawContents(CellCanvas& canvas) {
    if (!IsFocused()) {
        CGridCell::DrawContents(canvas);
        return;
    }
    const QRect arrow = dropArrowRect(canvas.rect);
    canvas.rect.setRight(arrow.left() - 1);
    CGridCell::DrawContents(canvas);
    drawDropArrow(canvas.painter, *GetGrid(), arrow, false);
}

bool CGridCellCombo::Edit(int row, int col, const QRect& rect, QPoint point, int id,
                          uint32_t character) {
    if (IsEditing()) return true;
    const bool isOnArrow = character == kEditByClick && rect.contains(rect.topLeft() + point) &&
                           dropArrowRect(rect).contains(rect.topLeft() + point);
    SetEditor(CInPlaceList::Open(*this, {row, col}, rect, id, character, GetOptions(), style_,
                                 isOnArrow));
    return IsEditing();
}

}  // namespace sg::grid
