#include "grid/axis_sizes.h"

#include <algorithm>
#include <numeric>

namespace sg::grid {
namespace {

constexpr size_t kBlock = 256;

}  // namespace

// What lies behind the item's block is to be summed again.
void AxisSizes::Touch(int item) const {
    const size_t known = size_t(item) / kBlock + 1;
    if (starts_.size() > known) starts_.resize(known);
}

void AxisSizes::SumUpTo(size_t block) const {
    while (starts_.size() <= block) {
        const size_t first = (starts_.size() - 1) * kBlock;
        const auto begin = sizes_.begin() + std::ptrdiff_t(first);
        starts_.push_back(std::accumulate(begin, begin + std::ptrdiff_t(kBlock), starts_.back()));
    }
}

void AxisSizes::Set(int item, int size) {
    if (sizes_[size_t(item)] == size) return;
    sizes_[size_t(item)] = size;
    Touch(item);
}

void AxisSizes::Insert(int before, int count, int size) {
    sizes_.insert(sizes_.begin() + before, size_t(count), size);
    Touch(before);
}

void AxisSizes::Erase(int first, int count) {
    sizes_.erase(sizes_.begin() + first, sizes_.begin() + first + count);
    Touch(first);
}

void AxisSizes::Resize(int count, int size) {
    Touch(std::min(count, Count()));
    sizes_.resize(size_t(count), size);
}

void AxisSizes::Swap(int a, int b) {
    if (sizes_[size_t(a)] == sizes_[size_t(b)]) return;
    std::swap(sizes_[size_t(a)], sizes_[size_t(b)]);
    Touch(std::min(a, b));
}

int64_t AxisSizes::Start(int item) const {
    const size_t block = size_t(item) / kBlock;
    SumUpTo(block);
    const auto begin = sizes_.begin() + std::ptrdiff_t(block * kBlock);
    return std::accumulate(begin, sizes_.begin() + item, starts_[block]);
}

int AxisSizes::At(int64_t position) const {
    if (position < 0) return 0;
    SumUpTo(sizes_.size() / kBlock);
    const auto behind = std::upper_bound(starts_.begin(), starts_.end(), position);
    size_t item = size_t(behind - starts_.begin() - 1) * kBlock;
    for (int64_t end = starts_[item / kBlock]; item < sizes_.size(); ++item) {
        end += sizes_[item];
        if (position < end) break;
    }
    return int(item);
}

int AxisSizes::NextShown(int item) const {
    if (item >= Count()) return -1;
    if (sizes_[size_t(item)] > 0) return item;
    const int next = At(Start(item));
    return next < Count() ? next : -1;
}

int AxisSizes::PreviousShown(int item) const {
    if (item < 0) return -1;
    if (sizes_[size_t(item)] > 0) return item;
    const int64_t start = Start(item);
    return start > 0 ? At(start - 1) : -1;
}

}  // namespace sg::grid
