#include <QEvent>
#include <QPalette>

#include <cmath>
#include <cstdlib>

#include "grid/grid_ctrl.h"
#include "grid/tree_column.h"

// Colours and fonts of the platform, and their changes.
namespace sg::grid {
namespace {

// Follows the system where the user has not chosen.
void follow(GridColour& colour, GridColour before, GridColour now) {
    if (colour == before) colour = now;
}

// Lines in it have to show on the cells: where these are dark too, the grey of texts does.
QColor shadowOf(const QPalette& colours) {
    constexpr int kLeast = 64;
    const QColor dark = colours.color(QPalette::Dark);
    const int contrast = std::abs(dark.lightness() - colours.color(QPalette::Base).lightness());
    return contrast >= kLeast ? dark : colours.color(QPalette::Disabled, QPalette::Text);
}

}  // namespace

void CGridCtrl::TakeSystemColours() {
    const SystemColours before = systemColours_;
    const QPalette& colours = palette();
    systemColours_ = {gridColour(colours.color(QPalette::Text)),
                      gridColour(colours.color(QPalette::Base)),
                      gridColour(colours.color(QPalette::Button)), gridColour(shadowOf(colours))};
    for (CGridDefaultCell& cell : cellDefaults_) {
        const bool isFixed = cell.IsFixed();
        GridColour text = cell.GetTextClr(), back = cell.GetBackClr();
        follow(text, text == kDefaultColour ? text : before.text, systemColours_.text);
        follow(back,
               back == kDefaultColour ? back
               : isFixed              ? before.face
                                      : before.window,
               isFixed ? systemColours_.face : systemColours_.window);
        cell.SetTextClr(text);
        cell.SetBackClr(back);
    }
    GridColour lines = tree_->GetLineColour();
    follow(lines, lines == kDefaultColour ? lines : before.shadow, systemColours_.shadow);
    tree_->SetLineColour(lines);
    Refresh();
}

// Rows and columns keep their size in characters.
void CGridCtrl::TakeFont() {
    const CGridDefaultCell& plain = GetDefaultCell(false, false);
    const double width = plain.GetWidth(), height = plain.GetHeight();
    const QFont now = font();
    for (CGridDefaultCell& cell : cellDefaults_)
        cell.SetFont(&now);
    if (height <= 0 || width <= 0) return;
    for (int row = 0; row < GetRowCount(); ++row) {
        if (rowHeights_[row] == 0) continue;
        rowHeights_.Set(
            row, std::max(int(std::lround(rowHeights_[row] * plain.GetHeight() / height)), 1));
    }
    for (int column = 0; column < GetColumnCount(); ++column) {
        if (columnWidths_[column] == 0) continue;
        columnWidths_.Set(
            column,
            std::max(int(std::lround(columnWidths_[column] * plain.GetWidth() / width)), 1));
    }
    NeedLayout();
}

void CGridCtrl::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) TakeSystemColours();
    if (event->type() == QEvent::FontChange) TakeFont();
    if (event->type() == QEvent::EnabledChange) Refresh();
}

}  // namespace sg::grid
