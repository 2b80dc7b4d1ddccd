#include "grid/check_cell.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

#include <algorithm>

#include "grid/grid_ctrl.h"

namespace sg::grid {
namespace {

QRect centred(QSize size, const QRect& area) {
    return {area.left() + (area.width() - size.width()) / 2,
            area.top() + (area.height() - size.height()) / 2, size.width(), size.height()};
}

}  // namespace

QSize CGridCheckCell::BoxSize() const {
    const QStyle& style = *GetGrid()->style();
    return {style.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, GetGrid()),
            style.pixelMetric(QStyle::PM_IndicatorHeight, nullptr, GetGrid())};
}

QSize CGridCheckCell::GetCellExtent() const {
    return BoxSize() + QSize(2 * GetMarginX(), 2 * GetMarginY());
}

void CGridCheckCell::DrawContents(CellCanvas& canvas) {
    QStyleOptionButton option;
    option.initFrom(GetGrid());
    option.state.setFlag(QStyle::State_HasFocus, false);
    option.state.setFlag(IsOn() ? QStyle::State_On : QStyle::State_Off);
    const QSize size = BoxSize().boundedTo(canvas.rect.size());
    option.rect = centred(size, canvas.rect);
    GetGrid()->style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &canvas.painter,
                                      GetGrid());
    // The style's own frame is made for the ground of a dialog, and is lost on dark cells.
    constexpr int kFrameAlpha = 110;
    QColor frame = canvas.textColour;
    frame.setAlpha(kFrameAlpha);
    canvas.painter.setPen(frame);
    canvas.painter.setBrush(Qt::NoBrush);
    canvas.painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
}

bool CGridCheckCell::Edit(int row, int col, const QRect&, QPoint, int, uint32_t character) {
    constexpr uint32_t blank = 32;
    const bool changes =
        character == kEditByClick || character == kEditByReturn || character == blank;
    if (!changes && character != L'0' && character != L'1') return false;
    const bool on = changes ? !IsOn() : character == L'1';
    return GetGrid()->CommitEdit({row, col}, TextFor(on));
}

bool CGridCheckCell::ValidateEdit(const std::wstring& text) {
    return text == TextFor(true) || text == TextFor(false);
}

bool CGridCheckCell::TakesClick(QPoint point) const {
    QRect rect;
    const CCellID place = GetGrid()->PlaceOf(*this);
    if (!GetGrid()->GetCellRect(place.row, place.col, rect)) return false;
    return centred(BoxSize(), {QPoint(), rect.size()}).contains(point);
}

void CGridCheckCell::OnClick(QPoint point) {
    if (!TakesClick(point)) return;
    const CCellID place = GetGrid()->PlaceOf(*this);
    GetGrid()->SetItemTextWithNotify(place.row, place.col, TextFor(!IsOn()));
}

}  // namespace sg::grid
