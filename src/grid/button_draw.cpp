#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <array>

#include "grid/button_block.h"
#include "grid/grid_ctrl.h"

// How the controls of a cell look: the platform's style draws them.
namespace sg::grid {
namespace {

QStyle::PrimitiveElement arrowOf(uint32_t state) {
    switch (state & DFCS_KINDS) {
        case DFCS_SCROLLUP:
            return QStyle::PE_IndicatorArrowUp;
        case DFCS_SCROLLLEFT:
            return QStyle::PE_IndicatorArrowLeft;
        case DFCS_SCROLLRIGHT:
            return QStyle::PE_IndicatorArrowRight;
        default:
            return QStyle::PE_IndicatorArrowDown;
    }
}

QStyle::State styleState(const CGridCtrl& grid, uint32_t state) {
    QStyle::State flags = QStyle::State_None;
    if ((state & DFCS_INACTIVE) == 0 && grid.isEnabled()) flags |= QStyle::State_Enabled;
    flags |= (state & DFCS_PUSHED) != 0 ? QStyle::State_Sunken : QStyle::State_Raised;
    flags |= (state & DFCS_CHECKED) != 0 ? QStyle::State_On : QStyle::State_Off;
    return flags;
}

// An inactive control's text has a white shadow.
void drawText(QPainter& painter, const CGridCtrl& grid, const QFont& font,
              const CellControl& control, const QRect& rect) {
    const QPalette& palette = grid.palette();
    if ((control.state & DFCS_INACTIVE) != 0) {
        painter.setPen(Qt::white);
        grid.Texts().Draw(painter, font, rect.translated(1, 1), control.text, kControlFormat);
        painter.setPen(palette.color(QPalette::Disabled, QPalette::Text));
    } else {
        painter.setPen(palette.color(QPalette::ButtonText));
    }
    grid.Texts().Draw(painter, font, rect, control.text, kControlFormat);
}

void drawControl(QPainter& painter, const CGridCtrl& grid, const QFont& font,
                 const CellControl& control, const QRect& rect) {
    QStyle& style = *grid.style();
    QStyleOptionButton option;
    option.initFrom(&grid);
    option.state = styleState(grid, control.state);
    option.rect = rect;
    QRect textRect = rect;
    const bool isSmall = control.type == DFC_BUTTON && (control.state & DFCS_BUTTONPUSH) == 0;
    if (isSmall) {
        const bool isRadio = (control.state & DFCS_BUTTONRADIO) != 0;
        const int size = std::min({rect.width(), rect.height(),
                                   style.pixelMetric(QStyle::PM_IndicatorWidth, &option, &grid)});
        option.rect = {rect.left(), rect.top() + (rect.height() - size) / 2, size, size};
        style.drawPrimitive(
            isRadio ? QStyle::PE_IndicatorRadioButton : QStyle::PE_IndicatorCheckBox, &option,
            &painter, &grid);
        textRect.setLeft(option.rect.right() + 2);
    } else {
        style.drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, &grid);
        if (control.type == DFC_SCROLL) {
            option.rect = rect.adjusted(4, 4, -4, -4);
            style.drawPrimitive(arrowOf(control.state), &option, &painter, &grid);
        }
    }
    if (!control.text.empty()) drawText(painter, grid, font, control, textRect);
}

}  // namespace

void ButtonBlock::Draw(CellCanvas& canvas, const CGridCtrl& grid, int marginX) const {
    std::array<QRect, kCapacity> rects;
    const QRect area = canvas.rect.adjusted(marginX, 0, 0, 0);
    const QFont* const printing = grid.GetPrintFont();
    if (!CalcControlRects(rects, area, marginX, printing != nullptr)) return;
    const QFont& font =
        printing != nullptr ? *printing : grid.GetDefaultCell(false, false).GetFont();
    canvas.painter.save();
    canvas.painter.setClipRect(area, Qt::IntersectClip);
    for (size_t i = 0; i < controls_.size(); ++i) {
        if (!rects[i].isEmpty()) drawControl(canvas.painter, grid, font, controls_[i], rects[i]);
    }
    canvas.painter.restore();
    canvas.rect = TextRect(area, marginX);
}

}  // namespace sg::grid
