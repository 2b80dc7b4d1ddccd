#include "standards/dialogs/grid_dialog_layout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace sg {

void FilledGrid::resizeEvent(QResizeEvent* event) {
    CGridCtrl::resizeEvent(event);
    ExpandToFit();
}

grid::CGridCtrl* newDialogGrid(CDialog& dialog, int characters, int rows, int id) {
    auto* const made = new FilledGrid(&dialog);
    CDialog::SetControlId(*made, id);
    const QFontMetrics metrics = made->fontMetrics();
    constexpr int kRowEdges = 4;
    made->setMinimumSize(characters * metrics.averageCharWidth(),
                         rows * (metrics.height() + kRowEdges));
    return made;
}

void layOutUnderGrid(CDialog& dialog, grid::CGridCtrl& grid, const std::vector<QWidget*>& left,
                     const std::vector<QWidget*>& right, QWidget* above) {
    auto* const below = new QHBoxLayout;
    for (QWidget* const control : left)
        below->addWidget(control);
    below->addStretch();
    for (QWidget* const control : right)
        below->addWidget(control);
    auto* const all = new QVBoxLayout(&dialog);
    if (above != nullptr) all->addWidget(above);
    all->addWidget(&grid, 1);
    all->addLayout(below);
}

}  // namespace sg
