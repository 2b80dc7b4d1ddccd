#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/export.h"

namespace sg::grid {

// The heights of rows, or the widths of columns, one behind the other; 0 hides one. Sums over whole
// blocks are kept, so that positions in long rows of items cost little.
class SG_API AxisSizes {
  public:
    int Count() const { return int(sizes_.size()); }
    int operator[](int item) const { return sizes_[size_t(item)]; }

    void Set(int item, int size);
    void Insert(int before, int count, int size);
    void Erase(int first, int count);
    void Resize(int count, int size);
    void Swap(int a, int b);

    // The pixels before the item; of Count() the total.
    int64_t Start(int item) const;
    int64_t Total() const { return Start(Count()); }
    // The item that the pixel lies in; Count() behind the last one, 0 before the first.
    int At(int64_t position) const;
    // The first item from `item` on that is not hidden, or the last one up to it; -1 without one.
    int NextShown(int item) const;
    int PreviousShown(int item) const;

  private:
    void Touch(int item) const;
    void SumUpTo(size_t block) const;

    std::vector<int> sizes_;
    mutable std::vector<int64_t> starts_{0};  // of blocks, as far as they are known
};

}  // namespace sg::grid
