#include "grid/cell_watch.h"

#include "grid/grid_ctrl.h"

namespace sg::grid {

CellWatch::CellWatch(CGridCtrl& grid, CGridCellBase* cell, CCellID id)
    : grid_(&grid), cell_(cell), id_(id) {
    grid.watches_.push_back(this);
}

CellWatch::~CellWatch() {
    if (grid_ != nullptr) std::erase(grid_->watches_, this);
}

CCellID CellWatch::Place() const {
    if (grid_ == nullptr || cell_ == nullptr) return {};
    if (grid_->GetCell(id_.row, id_.col) != cell_) id_ = grid_->PlaceOf(*cell_);
    return id_;
}

}  // namespace sg::grid
