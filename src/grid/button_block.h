#pragma once

#include <QRect>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "grid/cell_id.h"
#include "grid/cell_watch.h"

class QPainter;

namespace sg::grid {

struct CellCanvas;

// What a control in a cell is.
enum ControlType { DFC_SCROLL = 3, DFC_BUTTON = 4 };

// Bits of a control's state. The low five tell what a DFC_BUTTON is (none of them: a check box),
// and where the arrow of a DFC_SCROLL points.
enum ControlState : uint32_t {
    DFCS_BUTTONCHECK = 0,
    DFCS_BUTTONRADIO = 4,
    DFCS_BUTTON3STATE = 8,
    DFCS_BUTTONPUSH = 0x10,
    DFCS_SCROLLUP = 0,
    DFCS_SCROLLDOWN = 1,
    DFCS_SCROLLLEFT = 2,
    DFCS_SCROLLRIGHT = 3,
    DFCS_SCROLLCOMBOBOX = 5,
    DFCS_KINDS = 0x1F,
    DFCS_INACTIVE = 0x100,
    DFCS_PUSHED = 0x200,
    DFCS_CHECKED = 0x400,
};

// One control of a cell.
struct CellControl {
    int type = DFC_BUTTON;
    uint32_t state = DFCS_BUTTONPUSH;
    int width = 0;        // pixels; 0 or less: a share of what the others leave
    std::wstring text{};  // "&" stands before its hot key
    int align = 0;        // controls with smaller numbers come first, equal ones as they were added
    bool isMutuallyExclusive =
        false;  // with the others of its kind in the cell, as radio buttons are
};

// The controls of a cell: push buttons, check boxes, radio buttons and arrows side by side. Up to
// sixteen can be laid out; with more none is drawn.
class SG_API ButtonBlock {
  public:
    static constexpr size_t kCapacity = 16;

    // Controls are known by their number in the order in which they were added.
    size_t Count() const { return controls_.size(); }
    void Add(CellControl control) { controls_.push_back(std::move(control)); }
    void Clear() { controls_.clear(); }
    CellControl& operator[](size_t control) { return controls_[control]; }
    const CellControl& operator[](size_t control) const { return controls_[control]; }
    // -1: none has the mouse.
    int GetLastPushed() const { return lastPushed_; }

    // Where the controls stand in the area; `marginX` is the cell's. A control that has no room is
    // empty. False when there are more controls than rectangles. For printing, a small control is
    // as high as the area.
    bool CalcControlRects(std::span<QRect> rects, const QRect& area, int marginX,
                          bool forPrint = false) const;

    // The control at a point of the area; -1: none.
    int ControlAt(QPoint point, const QRect& area, int marginX) const;
    // What is left of the area at the right of the controls.
    QRect TextRect(const QRect& area, int marginX) const;
    // Takes the controls' place from the canvas.
    void Draw(CellCanvas& canvas, const CGridCtrl& grid, int marginX) const;

    // The events of the cell, which is at `id`; the point and the area are in the cell. The owner
    // is told of clicks on push buttons, and may take the cell away then.
    enum class Event { Down, Up, DoubleClick };
    void OnClickDown(CGridCellBase& cell, CCellID id, QPoint point, const QRect& area);
    void OnDblClick(CGridCellBase& cell, CCellID id, QPoint point, const QRect& area);
    void OnClick(CGridCellBase& cell, CCellID id);
    // The mouse left while a control was pushed.
    void OnMouseLeave(CGridCellBase& cell, CCellID id);
    void ProcessControlEvent(CGridCellBase& cell, CCellID id, Event event, int control);
    // Presses the control that a typed character is meant for, long enough to be seen. False when
    // there is none.
    bool TakeCharacter(CGridCellBase& cell, CCellID id, uint32_t character, const QRect& area);

  private:
    std::vector<int> Widths(const QRect& area, int& leftover) const;
    void ChooseAmongItsKind(size_t control);
    void PressForAMoment(CGridCellBase& cell, CCellID id, int control);

    std::vector<CellControl> controls_;
    int16_t lastPushed_ = -1;
};

}  // namespace sg::grid
