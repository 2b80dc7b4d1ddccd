#include "grid/default_cell.h"

#include <QFontMetrics>

namespace sg::grid {

CGridDefaultCell::CGridDefaultCell() {
    SetFormat(kPlainFormat);
    SetMarginX(0);
    SetMarginY(0);
}

void CGridDefaultCell::SetFont(const QFont* font) {
    if (font == nullptr) return;
    CGridCell::SetFont(font);
    const QFontMetrics metrics(*font);
    SetMarginX(uint32_t(metrics.horizontalAdvance(u' ')));
    SetMarginY(1);
    width_ = metrics.horizontalAdvance(QStringLiteral(" XXXXXXXXXXXX "));
    height_ = metrics.height() + 3;
}

}  // namespace sg::grid
