#pragma once

#include <bitset>
#include <cstdint>
#include <span>
#include <vector>

#include "base/export.h"
#include "grid/cell_class.h"
#include "grid/constants.h"

namespace sg::grid {

class CGridCtrl;
class CGridTreeCellBase;

// What the lines and the box of a tree row show.
struct TreeRowLook {
    bool hasChildren = false;
    bool isCollapsed = false;
    bool isLast = false;     // of the rows with its parent
    std::bitset<128> rails;  // of its ancestors' levels that go on below it
};

// One column of a grid as an outline. Each row has a level, 1 the top one and 0 not in the tree;
// the rows behind it with higher levels are its descendants. A row that is folded away has height
// 0.
//
// Rows are the grid's. Everything that is given a row without a tree cell answers -1, 0 or false
// and changes nothing.
class SG_API CTreeColumn {
  public:
    static constexpr uint8_t kShown = 0x80;
    static constexpr uint8_t kLevels = 0x7F;

    CTreeColumn() = default;
    virtual ~CTreeColumn();
    CTreeColumn(const CTreeColumn&) = delete;
    CTreeColumn& operator=(const CTreeColumn&) = delete;

    // Text format, images and indent of all tree cells.
    virtual void SetDefaultFormat(uint32_t format) { defaultFormat_ = format; }
    virtual uint32_t GetDefaultFormat() const { return defaultFormat_; }
    // Of the first of the three images: expanded, collapsed, without children.
    virtual void SetImageOffset(int offset) { imageOffset_ = offset; }
    virtual int GetImageOffset() const { return imageOffset_; }
    // Whether operations repaint the grid.
    virtual void SetAllowDraw(bool allow) { allowDraw_ = allow; }
    virtual bool GetAllowDraw() const { return allowDraw_; }
    virtual void SetDefaultSubcell(int subcell) { defaultSubcell_ = subcell; }
    virtual int GetDefaultSubcell() const { return defaultSubcell_; }
    virtual void SetGrid(CGridCtrl* grid) { grid_ = grid; }
    virtual CGridCtrl* GetGrid() const { return grid_; }
    virtual void SetColumn(int column) { column_ = column; }
    virtual int GetColumn() const { return column_; }
    virtual void SetIndent(int pixels) { indent_ = pixels; }  // a level
    virtual int GetIndent() const { return indent_; }
    virtual void SetFixedRows(int rows) { fixedRows_ = rows; }
    virtual int GetFixedRows() const { return fixedRows_; }
    virtual void SetTotalRows(int rows) { totalRows_ = rows; }
    virtual int GetTotalRows() const { return totalRows_; }
    void SetTreeLines(bool on) { treeLines_ = on; }
    bool GetTreeLines() const { return treeLines_; }
    void SetTreeImages(bool on) { treeImages_ = on; }
    bool GetTreeImages() const { return treeImages_; }
    void SetLineColour(GridColour colour) { lineColour_ = colour; }
    GridColour GetLineColour() const { return lineColour_; }

    // Gives the grid this many rows, the fixed ones among them, with a tree cell in each of the
    // others. `levels` are those of the rows behind the fixed ones; where they end the level is 1.
    // A null class is CGridTreeCell. False, with nothing changed, for a class of other cells, a
    // column that is not there, or fewer rows than fixed ones.
    bool TreeSetup(CGridCtrl& grid, int column, int rowCount, int fixedRows,
                   std::span<const uint8_t> levels, bool showLines, bool showImages,
                   const GridCellClass* cellClass);

    // Rows with these levels, all shown, before a row, or at the end for a row outside the tree.
    // New cells look as that of the last row of the tree. The first new row, or -1 for none.
    int InsertTreeBranch(std::span<const uint8_t> levels, int before = -1, bool redraw = true);
    // The row and its descendants. How many went.
    int DeleteTreeBranch(int row, bool redraw = true);

    int GetLevel(int row) const;
    bool IsShown(int row) const;
    uint8_t GetLevelAndHide(int row) const;
    bool SetLevelAndHide(int row, uint8_t levelAndHide);
    int FindNextSibling(int row) const;
    int FindPreviousSibling(int row) const;
    int FindParent(int row) const;
    int FindLastChild(int row) const;
    bool HasChildren(int row, bool& hasHidden, bool& allShown, bool& isLast) const;

    // Folding shows one level of descendants, or none.
    bool Collapse(int row);
    bool Expand(int row);
    bool Toggle(int row);
    // 128 and above show everything.
    bool ShowLevel(int level);
    void RefreshRows();

    // What a tree cell draws.
    TreeRowLook LookOf(int row) const;

    // The grid's rows have changed, or the bytes in them.
    void Touch() { looks_.clear(); }
    void RowsCame(int row, int count);
    void RowsWent(int row, int count);
    void ColumnCame(int column);
    void ColumnWent(int column);
    // There is no tree any more.
    void Forget();

  private:
    CGridTreeCellBase* CellAt(int row) const;
    bool IsTreeRow(int row) const;
    void MakeTreeCell(int row, uint8_t levelAndHide, const CGridTreeCellBase* like);
    void LookAtRows(int first) const;

    uint32_t defaultFormat_ = kSharedFormat;
    int imageOffset_ = 0;
    bool allowDraw_ = false;
    int defaultSubcell_ = 0;
    CGridCtrl* grid_ = nullptr;
    const GridCellClass* cellClass_ = nullptr;  // null: CGridTreeCell
    int column_ = -1;
    int indent_ = 10;
    bool treeLines_ = true;
    bool treeImages_ = false;
    GridColour lineColour_ = kDefaultColour;
    int fixedRows_ = -1;
    int totalRows_ = -1;

    // Looks of neighbouring rows, as they are painted one after the other.
    mutable int firstLook_ = 0;
    mutable std::vector<TreeRowLook> looks_;
};

}  // namespace sg::grid
