#pragma once

#include "base/export.h"
#include "grid/cell_id.h"

namespace sg::grid {

class CGridCellBase;
class CGridCtrl;

// Follows a cell while its owner is told something: rows may be deleted or moved meanwhile, and the
// grid may go.
class SG_API CellWatch {
  public:
    // `cell` is at `id` in the grid now; null watches the grid alone.
    CellWatch(CGridCtrl& grid, CGridCellBase* cell, CCellID id = {});
    ~CellWatch();
    CellWatch(const CellWatch&) = delete;
    CellWatch& operator=(const CellWatch&) = delete;

    CGridCtrl* Grid() const { return grid_; }      // null once it is gone
    CGridCellBase* Cell() const { return cell_; }  // null once it is gone
    // Where the cell is now; none once it is gone.
    CCellID Place() const;

  private:
    friend class CGridCtrl;

    CGridCtrl* grid_;
    CGridCellBase* cell_;
    mutable CCellID id_;
};

}  // namespace sg::grid
