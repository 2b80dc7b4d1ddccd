#include <utility>

#include "grid/grid_ctrl.h"

// What the owner is told. Nothing while the grid goes.
namespace sg::grid {

void CGridCtrl::Tell(void (GridListener::*what)(CGridCtrl&, CCellID), CCellID id) {
    if (listener_ != nullptr && !isBeingDestroyed_) (listener_->*what)(*this, id);
}

void CGridCtrl::TellChanging(CCellID id) {
    Tell(&GridListener::OnSelectionChanging, id);
}

void CGridCtrl::TellChanged(CCellID id) {
    Tell(&GridListener::OnSelectionChanged, id);
}

void CGridCtrl::TellEdited(CGridCellBase& cell, CCellID id) {
    if (GetCell(id.row, id.col) == &cell && listener_ != nullptr && !isBeingDestroyed_) {
        listener_->OnEndEdit(*this, id);
    }
}

bool CGridCtrl::AskBeginEdit(CCellID id) {
    return listener_ == nullptr || isBeingDestroyed_ || listener_->OnBeginEdit(*this, id);
}

}  // namespace sg::grid
