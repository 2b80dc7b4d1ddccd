#include <utility>

#include "grid/grid_ctrl.h"

// Merged blocks. The list of them is what holds; the cells' own marks follow it.
namespace sg::grid {

void CGridCtrl::MarkBlock(const CCellRange& block, bool on) {
    for (int row = block.minRow; row <= block.maxRow; ++row) {
        for (int column = block.minCol; column <= block.maxCol; ++column) {
            CGridCellBase& cell = *GetCell(row, column);
            const bool isFirst = CCellID{row, column} == block.TopLeft();
            if (isFirst) {
                cell.SetMergeRange(on ? block : CCellRange());
            } else {
                cell.SetMergeCell(on ? block.TopLeft() : CCellID());
            }
        }
    }
}

void CGridCtrl::ReplaceBlocks(std::vector<CCellRange> blocks) {
    for (const CCellRange& block : blocks_)
        MarkBlock(block, false);
    blocks_ = std::move(blocks);
    for (const CCellRange& block : blocks_)
        MarkBlock(block, true);
    Refresh();
}

bool CGridCtrl::MergeCells(int minRow, int minColumn, int maxRow, int maxColumn) {
    EndEditing();
    const CCellRange block{minRow, minColumn, maxRow, maxColumn};
    if (!block.IsValid() || !IsValid(minRow, minColumn) || !IsValid(maxRow, maxColumn))
        return false;
    UnMergeCells(minRow, minColumn, maxRow, maxColumn);
    if (block.Count() > 1) {
        blocks_.push_back(block);
        MarkBlock(block, true);
    }
    Refresh();
    return true;
}

bool CGridCtrl::UnMergeCells(int minRow, int minColumn, int maxRow, int maxColumn) {
    const CCellRange range{minRow, minColumn, maxRow, maxColumn};
    if (!range.IsValid() || !IsValid(minRow, minColumn) || !IsValid(maxRow, maxColumn))
        return false;
    std::erase_if(blocks_, [&](const CCellRange& block) {
        if (!block.Intersects(range)) return false;
        MarkBlock(block, false);
        return true;
    });
    Refresh();
    return true;
}

const CCellRange* CGridCtrl::BlockAt(CCellID id) const {
    const CGridCellBase* const cell = GetCell(id.row, id.col);
    if (cell == nullptr || (!cell->IsMerged() && !cell->IsMergedIntoOther())) return nullptr;
    for (const CCellRange& block : blocks_) {
        if (block.Contains(id)) return &block;
    }
    return nullptr;
}

namespace {

// The ends of a block after one item came before `at` (1), or that at `at` goes (-1).
void moveEnds(int& first, int& last, int at, int count) {
    if (first > at || (first == at && count > 0)) first += count;
    if (last >= at) last += count;
}

}  // namespace

// To be called when rows have come, or before they go: a block that they are in grows or shrinks.
void CGridCtrl::MoveBlocksForRows(int at, int count) {
    const bool isAnyBehind = std::any_of(blocks_.begin(), blocks_.end(),
                                         [&](const CCellRange& b) { return b.maxRow >= at; });
    if (!isAnyBehind) return;
    std::vector<CCellRange> moved;
    for (CCellRange block : std::exchange(blocks_, {})) {
        if (count < 0) MarkBlock(block, false);
        moveEnds(block.minRow, block.maxRow, at, count);
        if (block.Count() > 1) moved.push_back(block);
    }
    blocks_ = std::move(moved);
    if (count > 0) {
        for (const CCellRange& block : blocks_)
            MarkBlock(block, true);
    }
}

void CGridCtrl::MoveBlocksForColumns(int at, int count) {
    const bool isAnyBehind = std::any_of(blocks_.begin(), blocks_.end(),
                                         [&](const CCellRange& b) { return b.maxCol >= at; });
    if (!isAnyBehind) return;
    std::vector<CCellRange> moved;
    for (CCellRange block : std::exchange(blocks_, {})) {
        if (count < 0) MarkBlock(block, false);
        moveEnds(block.minCol, block.maxCol, at, count);
        if (block.Count() > 1) moved.push_back(block);
    }
    blocks_ = std::move(moved);
    if (count > 0) {
        for (const CCellRange& block : blocks_)
            MarkBlock(block, true);
    }
}

}  // namespace sg::grid
