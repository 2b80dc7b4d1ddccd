#pragma once

#include <vector>

#include "grid/grid_ctrl.h"
#include "platform/ui/dialog.h"

// Dialogs of one grid with buttons below it.
namespace sg {

// A grid whose columns fill its width.
class FilledGrid final : public grid::CGridCtrl {
  public:
    using CGridCtrl::CGridCtrl;

  protected:
    void resizeEvent(QResizeEvent* event) override;
};

inline constexpr int kDialogGrid = 1048;  // the grid's id

// Room for so many average characters and rows.
grid::CGridCtrl* newDialogGrid(CDialog& dialog, int characters, int rows, int id = kDialogGrid);

// The grid, and under it controls at the left and buttons at the right.
void layOutUnderGrid(CDialog& dialog, grid::CGridCtrl& grid, const std::vector<QWidget*>& left,
                     const std::vector<QWidget*>& right, QWidget* above = nullptr);

}  // namespace sg
