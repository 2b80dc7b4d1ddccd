#include <array>

#include "grid/grid_ctrl.h"
#include "grid/tree_cell.h"
#include "grid/tree_column.h"

// How rows of a tree are related, and how they fold. All of it is read from the levels of
// neighbouring rows.
namespace sg::grid {

uint8_t CTreeColumn::GetLevelAndHide(int row) const {
    const CGridTreeCellBase* const cell = CellAt(row);
    return cell == nullptr ? 0 : cell->GetLevelAndHide();
}

bool CTreeColumn::SetLevelAndHide(int row, uint8_t levelAndHide) {
    CGridTreeCellBase* const cell = CellAt(row);
    if (cell == nullptr) return false;
    cell->SetLevelAndHide(levelAndHide);
    Touch();
    return true;
}

int CTreeColumn::GetLevel(int row) const {
    return GetLevelAndHide(row) & kLevels;
}

bool CTreeColumn::IsShown(int row) const {
    return (GetLevelAndHide(row) & kShown) != 0;
}

int CTreeColumn::FindNextSibling(int row) const {
    if (!IsTreeRow(row)) return -1;
    const int level = GetLevel(row);
    for (int other = row + 1; other < totalRows_; ++other) {
        if (GetLevel(other) == level) return other;
        if (GetLevel(other) < level) return -1;
    }
    return -1;
}

int CTreeColumn::FindPreviousSibling(int row) const {
    if (!IsTreeRow(row)) return -1;
    const int level = GetLevel(row);
    for (int other = row - 1; other >= fixedRows_; --other) {
        if (GetLevel(other) == level) return other;
        if (GetLevel(other) < level) return -1;
    }
    return -1;
}

int CTreeColumn::FindParent(int row) const {
    if (!IsTreeRow(row) || GetLevel(row) < 2) return -1;
    const int level = GetLevel(row) - 1;
    for (int other = row - 1; other >= fixedRows_; --other) {
        if (GetLevel(other) == level) return other;
        if (GetLevel(other) == 0) return -1;
    }
    return -1;
}

int CTreeColumn::FindLastChild(int row) const {
    if (!IsTreeRow(row) || GetLevel(row) == 0) return -1;
    const int level = GetLevel(row);
    int child = -1;
    for (int other = row + 1; other < totalRows_ && GetLevel(other) > level; ++other) {
        if (GetLevel(other) == level + 1) child = other;
    }
    return child;
}

bool CTreeColumn::HasChildren(int row, bool& hasHidden, bool& allShown, bool& isLast) const {
    hasHidden = allShown = isLast = false;
    if (!IsTreeRow(row)) return false;
    const int level = GetLevel(row);
    int other = row + 1;
    for (; other < totalRows_ && GetLevel(other) > level; ++other) {
        if (GetLevel(other) == level + 1 && !IsShown(other)) hasHidden = true;
    }
    allShown = other > row + 1 && !hasHidden;
    isLast = !(other < totalRows_ && IsShown(other) && GetLevel(other) == level);
    return hasHidden || allShown;
}

bool CTreeColumn::Collapse(int row) {
    if (!IsTreeRow(row) || GetLevel(row) == 0) return false;
    const int level = GetLevel(row);
    SetLevelAndHide(row, uint8_t(level | kShown));
    int other = row + 1;
    for (; other < totalRows_ && GetLevel(other) > level; ++other)
        CellAt(other)->SetLevelAndHide(GetLevelAndHide(other) & kLevels);
    // The keyboard goes on from the row that can still be seen.
    const CCellID focus = grid_->GetFocusCell();
    if (focus.row > row && focus.row < other) grid_->SetFocusCell(row, focus.col);
    RefreshRows();
    return true;
}

bool CTreeColumn::Expand(int row) {
    if (!IsTreeRow(row) || GetLevel(row) == 0) return false;
    const int level = GetLevel(row);
    SetLevelAndHide(row, uint8_t(level | kShown));
    for (int other = row + 1; other < totalRows_ && GetLevel(other) > level; ++other) {
        const int below = GetLevel(other);
        CellAt(other)->SetLevelAndHide(uint8_t(below == level + 1 ? below | kShown : below));
    }
    RefreshRows();
    return true;
}

bool CTreeColumn::Toggle(int row) {
    if (!IsTreeRow(row) || !IsTreeRow(row + 1)) return false;
    return IsShown(row + 1) ? Collapse(row) : Expand(row);
}

bool CTreeColumn::ShowLevel(int level) {
    if (grid_ == nullptr || column_ < 0) return false;
    for (int row = fixedRows_; row < totalRows_; ++row) {
        CGridTreeCellBase* const cell = CellAt(row);
        if (cell == nullptr) continue;
        const uint8_t own = cell->GetLevelAndHide() & kLevels;
        cell->SetLevelAndHide(level >= 128 || own <= level ? own | kShown : own);
    }
    RefreshRows();
    return true;
}

// A shown row that was made taller keeps its height.
void CTreeColumn::RefreshRows() {
    if (grid_ == nullptr || column_ < 0) return;
    Touch();
    AxisSizes& heights = grid_->rowHeights_;
    const int height = grid_->GetDefaultCell(false, false).GetHeight();
    for (int row = std::max(fixedRows_, 0); row < totalRows_; ++row) {
        const CGridTreeCellBase* const cell = CellAt(row);
        if (cell == nullptr) continue;
        const bool isShown = (cell->GetLevelAndHide() & kShown) != 0;
        if (isShown && heights[row] < height) heights.Set(row, height);
        if (!isShown && heights[row] > 0) heights.Set(row, 0);
    }
    if (allowDraw_) grid_->NeedLayout();
}

TreeRowLook CTreeColumn::LookOf(int row) const {
    if (row < firstLook_ || row >= firstLook_ + int(looks_.size())) LookAtRows(row);
    const size_t i = size_t(row - firstLook_);
    return i < looks_.size() ? looks_[i] : TreeRowLook();
}

// One walk from the end of the tree back to the row gives the looks of all rows on its way; those
// close to the row are kept.
void CTreeColumn::LookAtRows(int first) const {
    constexpr int kKept = 256;
    struct Level {
        bool goesOn = false;          // the next row of this level is a sibling, and shown
        bool hasHiddenChild = false;  // among the rows of this level that were passed
    };
    std::array<Level, 129> levels{};
    int deepest = 0, next = 0;  // level of the row behind
    firstLook_ = first;
    looks_.assign(size_t(std::clamp(totalRows_ - first, 0, kKept)), {});
    for (int row = totalRows_ - 1; row >= first; --row) {
        const uint8_t byte = GetLevelAndHide(row);
        const int level = byte & kLevels;
        const bool isShown = (byte & kShown) != 0;
        if (size_t(row - first) < looks_.size() && level > 0) {
            TreeRowLook& look = looks_[size_t(row - first)];
            look.hasChildren = next > level;
            look.isCollapsed = look.hasChildren && levels[size_t(level + 1)].hasHiddenChild;
            look.isLast = look.hasChildren ? !levels[size_t(level)].goesOn : next < level;
            for (int ancestor = 2; ancestor < level; ++ancestor)
                look.rails[size_t(ancestor)] = levels[size_t(ancestor)].goesOn;
        }
        // Deeper rows behind this one are its own descendants.
        for (int deeper = level + 1; deeper <= deepest; ++deeper)
            levels[size_t(deeper)] = {};
        deepest = level;
        levels[size_t(level)].goesOn = isShown;
        levels[size_t(level)].hasHiddenChild |= !isShown;
        next = level;
    }
}

}  // namespace sg::grid
