#include "grid/title_tip.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>

#include "grid/grid_ctrl.h"

namespace sg::grid {

CTitleTip::CTitleTip(CGridCtrl& grid)
    : QWidget(&grid, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                         Qt::WindowDoesNotAcceptFocus),
      grid_(grid) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

CTitleTip::~CTitleTip() = default;

void CTitleTip::Show(CCellID cell, const QRect& textRect, int textWidth) {
    cell_ = cell;
    constexpr int edge = 2;
    QRect place(grid_.viewport()->mapToGlobal(textRect.topLeft()),
                QSize(textWidth, textRect.height()));
    place.adjust(-edge, -edge, edge + 1, edge);
    const QRect screen = grid_.screen()->availableGeometry();
    place.setWidth(std::min(place.width(), screen.width()));
    place.moveLeft(std::clamp(place.left(), screen.left(), screen.right() - place.width() + 1));
    textPlace_ = {edge, edge};
    setGeometry(place);
    show();
    QCoreApplication::instance()->installEventFilter(this);
}

void CTitleTip::Hide() {
    if (isHidden()) return;
    QCoreApplication::instance()->removeEventFilter(this);
    hide();
}

void CTitleTip::paintEvent(QPaintEvent*) {
    const CGridCellBase* const cell = grid_.GetCell(cell_.row, cell_.col);
    if (cell == nullptr) return;
    const auto chosen = [](GridColour colour, const QColor& system) {
        return colour == kDefaultColour ? system : toQColor(colour);
    };
    QPainter painter(this);
    const QColor text =
        chosen(grid_.GetTitleTipTextColour(), palette().color(QPalette::ToolTipText));
    painter.fillRect(rect(),
                     chosen(grid_.GetTitleTipBackColour(), palette().color(QPalette::ToolTipBase)));
    painter.setPen(text);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    grid_.Texts().Draw(painter, cell->GetFont(), rect().adjusted(textPlace_.x(), 0, 0, 0),
                       cell->GetTipText(), kPlainFormat);
}

bool CTitleTip::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseMove:
            if (!geometry().contains(
                    static_cast<QMouseEvent*>(event)->globalPosition().toPoint())) {
                Hide();
            }
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::Wheel:
        case QEvent::ApplicationDeactivate:
            Hide();
            break;
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

// A tip stands where text is cut off, or where the cell has another text to tell.
bool CGridCtrl::ShowTip(QPoint point) {
    const CCellID id = GetCellFromPt(point);
    const CGridCellBase* const cell = GetCell(id.row, id.col);
    QRect rect;
    if (!titleTips_ || editor_ != nullptr || mouseMode_ != MouseMode::Nothing || cell == nullptr ||
        cell->GetTipText().empty() || !GetCellRect(id.row, id.col, rect)) {
        return false;
    }
    rect.adjust(cell->GetMarginX(), cell->GetMarginY(), -cell->GetMarginX() + 1,
                -cell->GetMarginY());
    const QRect text = cell->GetTipTextRect(rect);
    const int width = texts_.Extent(cell->GetFont(), cell->GetTipText(), kPlainFormat).width();
    if (width <= text.width()) return false;
    if (!titleTip_) titleTip_ = std::make_unique<CTitleTip>(*this);
    titleTip_->Show(id, text, width);
    return true;
}

}  // namespace sg::grid
