#include "support/dialogs/product_icon.h"

#include <QPainter>
#include <QPixmap>

namespace sg {

// A gate: two posts, and a leaf that stands open.
QIcon productIcon() {
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(1, 1, 3, 14), QColor(0x1F, 0x4E, 0x79));
    painter.fillRect(QRect(12, 1, 3, 14), QColor(0x1F, 0x4E, 0x79));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xE0, 0x8A, 0x1E));
    painter.drawPolygon(QPolygon({QPoint(4, 3), QPoint(10, 5), QPoint(10, 11), QPoint(4, 13)}));
    painter.end();
    return QIcon(picture);
}

}  // namespace sg
