#include "grid/button_block.h"

#include <QTimer>

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>

#include "base/text.h"
#include "grid/grid_ctrl.h"

namespace sg::grid {
namespace {

constexpr int kSmallHeight = 14;   // of a check box or radio button that is alone in its cell
constexpr int kSeenPressed = 200;  // milliseconds
constexpr uint32_t kBlank = 32;

bool isPushButton(const CellControl& control) {
    return control.type == DFC_BUTTON && (control.state & DFCS_BUTTONPUSH) != 0;
}

// A check box or a radio button.
bool isSmall(const CellControl& control) {
    return control.type == DFC_BUTTON && (control.state & DFCS_BUTTONPUSH) == 0;
}

bool isRadioLike(const CellControl& control) {
    return control.isMutuallyExclusive || (control.state & DFCS_BUTTONRADIO) != 0;
}

bool isOfOneKind(const CellControl& a, const CellControl& b) {
    return a.type == b.type && isRadioLike(a) && isRadioLike(b) &&
           (a.state & DFCS_KINDS) == (b.state & DFCS_KINDS);
}

// The character behind a single "&", in lower case; 0: none.
wchar_t hotKeyOf(const std::wstring& text) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != L'&') continue;
        if (text[i + 1] != L'&') return toLower(text[i + 1]);
        ++i;
    }
    return 0;
}

}  // namespace

// The widths of all controls. `leftover` is what those with a width leave.
std::vector<int> ButtonBlock::Widths(const QRect& area, int& leftover) const {
    std::vector<int> widths(controls_.size());
    leftover = area.width();
    int sharing = 0;
    for (size_t i = 0; i < controls_.size(); ++i) {
        widths[i] = std::max(controls_[i].width, 0);
        leftover -= widths[i];
        if (widths[i] == 0) ++sharing;
    }
    if (sharing == 0) return widths;
    const int height = area.height();
    const bool areSquares = height > 0 && height < leftover / sharing;
    int shared = leftover;
    for (size_t i = 0; i < controls_.size() && areSquares; ++i) {
        const bool hasKind = (controls_[i].state & DFCS_KINDS) != 0;
        if (widths[i] > 0 || controls_[i].type != DFC_BUTTON || !hasKind) continue;
        widths[i] = height;
        shared -= height;
        --sharing;
    }
    for (int& width : widths) {
        if (width == 0) width = std::max(shared / sharing, 0);
    }
    return widths;
}

bool ButtonBlock::CalcControlRects(std::span<QRect> rects, const QRect& area, int marginX,
                                   bool forPrint) const {
    if (rects.size() < controls_.size()) return false;
    if (controls_.size() == 1 && controls_[0].width <= 0) {
        rects[0] = area;
        if (isSmall(controls_[0])) {
            const int size = forPrint ? area.height() : std::min(kSmallHeight, area.height());
            rects[0] = {area.left(), area.top() + (area.height() - size) / 2, size, size};
        }
        return true;
    }
    int leftover = 0;
    const std::vector<int> widths = Widths(area, leftover);
    std::vector<size_t> order(controls_.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return controls_[a].align < controls_[b].align; });
    int x = area.left();
    for (const size_t control : order) {
        rects[control] = {x, area.top(), widths[control], area.height()};
        x += widths[control];
    }
    if (leftover < marginX && !order.empty()) rects[order.back()] = {};
    return true;
}

int ButtonBlock::ControlAt(QPoint point, const QRect& area, int marginX) const {
    std::array<QRect, kCapacity> rects;
    if (!CalcControlRects(rects, area, marginX)) return -1;
    for (size_t i = 0; i < controls_.size(); ++i) {
        if (!rects[i].contains(point) || !area.contains(point)) continue;
        // An arrow and the button behind it are one control.
        const bool isPair = controls_[i].type == DFC_SCROLL && i + 1 < controls_.size() &&
                            controls_[i + 1].type == DFC_BUTTON;
        return int(isPair ? i + 1 : i);
    }
    return -1;
}

QRect ButtonBlock::TextRect(const QRect& area, int marginX) const {
    std::array<QRect, kCapacity> rects;
    QRect left = area;
    if (!CalcControlRects(rects, area, marginX)) return left;
    for (size_t i = 0; i < controls_.size(); ++i) {
        if (!rects[i].isEmpty()) left.setLeft(std::max(left.left(), rects[i].right() + 1));
    }
    return left;
}

void ButtonBlock::OnClickDown(CGridCellBase& cell, CCellID id, QPoint point, const QRect& area) {
    lastPushed_ = int16_t(ControlAt(point, area, cell.GetMarginX()));
    if (lastPushed_ >= 0) ProcessControlEvent(cell, id, Event::Down, lastPushed_);
}

void ButtonBlock::OnDblClick(CGridCellBase& cell, CCellID id, QPoint point, const QRect& area) {
    lastPushed_ = int16_t(ControlAt(point, area, cell.GetMarginX()));
    if (lastPushed_ >= 0) ProcessControlEvent(cell, id, Event::DoubleClick, lastPushed_);
}

void ButtonBlock::OnClick(CGridCellBase& cell, CCellID id) {
    if (lastPushed_ >= 0) ProcessControlEvent(cell, id, Event::Up, lastPushed_);
}

void ButtonBlock::OnMouseLeave(CGridCellBase& cell, CCellID id) {
    if (lastPushed_ < 0 || size_t(lastPushed_) >= controls_.size()) return;
    controls_[size_t(lastPushed_)].state &= ~uint32_t(DFCS_PUSHED);
    lastPushed_ = -1;
    cell.GetGrid()->RedrawCell(id.row, id.col);
}

void ButtonBlock::ChooseAmongItsKind(size_t control) {
    CellControl& chosen = controls_[control];
    for (CellControl& other : controls_) {
        if (&other == &chosen || !isOfOneKind(other, chosen)) continue;
        other.state &= ~uint32_t(DFCS_CHECKED | DFCS_PUSHED);
    }
    chosen.state |= DFCS_CHECKED;
    if ((chosen.state & DFCS_BUTTONRADIO) == 0) chosen.state |= DFCS_PUSHED;
}

void ButtonBlock::ProcessControlEvent(CGridCellBase& cell, CCellID id, Event event, int number) {
    if (number < 0 || size_t(number) >= controls_.size()) return;
    CellControl& control = controls_[size_t(number)];
    if ((control.state & DFCS_INACTIVE) != 0) return;
    CGridCtrl& grid = *cell.GetGrid();
    bool isClicked = false;
    if (event == Event::Down) {
        control.state |= DFCS_PUSHED;
    } else {
        const bool wasPushed = (control.state & DFCS_PUSHED) != 0;
        control.state &= ~uint32_t(DFCS_PUSHED);
        if (control.type == DFC_BUTTON) {
            if (isRadioLike(control)) {
                ChooseAmongItsKind(size_t(number));
            } else if ((control.state & DFCS_KINDS) == DFCS_BUTTONCHECK) {
                control.state ^= DFCS_CHECKED;
            }
            isClicked = isPushButton(control) && wasPushed;
        }
    }
    grid.RedrawCell(id.row, id.col);
    // Last, since the owner may take the cell away.
    if (isClicked) grid.TellEdited(cell, id);
}

void ButtonBlock::PressForAMoment(CGridCellBase& cell, CCellID id, int control) {
    ProcessControlEvent(cell, id, Event::Down, control);
    CGridCtrl& grid = *cell.GetGrid();
    const auto watch = std::make_shared<CellWatch>(grid, &cell, id);
    QTimer::singleShot(kSeenPressed, &grid, [this, watch, control] {
        if (watch->Cell() == nullptr) return;
        ProcessControlEvent(*watch->Cell(), watch->Place(), Event::Up, control);
    });
}

bool ButtonBlock::TakeCharacter(CGridCellBase& cell, CCellID id, uint32_t character,
                                const QRect& area) {
    if (controls_.empty() || controls_.size() > kCapacity) return false;
    int control = -1;
    if (character == kBlank) {
        std::array<QRect, kCapacity> rects;
        CalcControlRects(rects, area, cell.GetMarginX());
        if (controls_.size() == 1 || rects[0] == area) control = 0;
    }
    for (size_t i = 0; i < controls_.size() && control < 0 && character > kBlank; ++i) {
        if (hotKeyOf(controls_[i].text) == toLower(wchar_t(character))) control = int(i);
    }
    if (control < 0) return false;
    PressForAMoment(cell, id, control);
    return true;
}

}  // namespace sg::grid
