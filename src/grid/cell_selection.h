#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

#include "base/export.h"
#include "grid/cell_id.h"

namespace sg::grid {

// A set of cells, kept as spans of columns in rows, so that whole rows cost as much as one cell.
class SG_API CellSelection {
  public:
    bool IsEmpty() const { return rows_.empty(); }
    bool Contains(CCellID cell) const;
    int64_t Count() const;
    // The smallest block around all of them; none when there are none.
    CCellRange Bounds() const;

    void Clear() { rows_.clear(); }
    void Add(const CCellRange& range);
    void Remove(const CCellRange& range);

    // For every span, in the order of rows and columns.
    void ForEachSpan(const std::function<void(int row, int firstCol, int lastCol)>& reader) const;

    // What follows when rows or columns come or go, or change places.
    void InsertRows(int before, int count);
    void EraseRows(int first, int count);
    void InsertColumn(int before);
    void EraseColumn(int col);
    // The row that is at `row` now was at `origin[row - first]` before.
    void PermuteRows(int first, const std::vector<int>& origin);

  private:
    struct Span {
        int first, last;
    };
    using Spans = std::vector<Span>;  // in order, with gaps between them

    std::map<int, Spans> rows_;  // none is empty
};

}  // namespace sg::grid
