#pragma once

#include <Qt>

#include "base/export.h"
#include "grid/cell_id.h"

namespace sg::grid {

class CGridCtrl;

// A key that is down in the grid.
struct GridKey {
    int key = 0;  // Qt::Key
    int repeat = 1;
    Qt::KeyboardModifiers modifiers;
};

// What a grid tells its owner. The numbers are those by which dialogs know the notifications. Rows
// may be deleted and texts set in any of them.
class SG_API GridListener {
  public:
    virtual ~GridListener();

    // -100 with the cell that had the focus, then -101 with the one that has it; either may be
    // none.
    virtual void OnSelectionChanging(CGridCtrl&, CCellID) {}
    virtual void OnSelectionChanged(CGridCtrl&, CCellID) {}

    // -175: false refuses the edit.
    virtual bool OnBeginEdit(CGridCtrl&, CCellID) { return true; }
    // -176: the cell has its new text; false puts the old one back. A pressed button of a cell
    // sends it too.
    virtual bool OnEndEdit(CGridCtrl&, CCellID) { return true; }

    virtual void OnClick(CGridCtrl&, CCellID) {}          // -2, when the left button is released
    virtual void OnDoubleClick(CGridCtrl&, CCellID) {}    // -3
    virtual void OnRightClick(CGridCtrl&, CCellID) {}     // -5
    virtual void OnFixedRowClick(CGridCtrl&, CCellID) {}  // 4156, in list mode alone

    // -155: true stops the grid from handling the key.
    virtual bool OnKeyDown(CGridCtrl&, const GridKey&) { return false; }
};

}  // namespace sg::grid
