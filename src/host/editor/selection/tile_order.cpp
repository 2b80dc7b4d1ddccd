#include "host/editor/selection/tile_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>
#include <utility>

namespace sg {
namespace {

struct Keyed {
    uint32_t key;
    uint32_t place;
};

// Orders by key, digit by digit from the lowest, which for many numbers takes a fraction of what
// comparing them does. `spare` is as long.
void sortByKey(std::span<Keyed> items, std::span<Keyed> spare) {
    constexpr unsigned kBits = 8;
    constexpr size_t kDigits = 4;
    constexpr uint32_t kMask = (1u << kBits) - 1;
    std::array<std::array<uint32_t, kMask + 1>, kDigits> ends{};
    for (const Keyed& item : items) {
        for (unsigned digit = 0; digit < kDigits; ++digit)
            ++ends[digit][item.key >> (digit * kBits) & kMask];
    }
    for (unsigned digit = 0; digit < kDigits; ++digit) {
        uint32_t sum = 0;
        for (uint32_t& end : ends[digit])
            sum += std::exchange(end, sum);
        for (const Keyed& item : items)
            spare[ends[digit][item.key >> (digit * kBits) & kMask]++] = item;
        std::swap(items, spare);
    }
}

// Numbers from 0 on keep their order as the bits of a float.
uint32_t keyOf(double number) {
    return std::bit_cast<uint32_t>(static_cast<float>(std::max(0.0, number)));
}

}  // namespace

std::vector<uint32_t> tileOrder(const std::vector<AcGePoint2d>& points, size_t tile) {
    AcGePoint2d least(INFINITY, INFINITY);
    for (const AcGePoint2d& p : points)
        least.set(std::min(least.x, p.x), std::min(least.y, p.y));
    std::vector<Keyed> order(points.size());
    std::vector<Keyed> spare(points.size());
    for (size_t i = 0; i < points.size(); ++i)
        order[i] = {keyOf(points[i].x - least.x), static_cast<uint32_t>(i)};
    sortByKey(order, spare);
    for (Keyed& item : order)
        item.key = keyOf(points[item.place].y - least.y);
    const double leaves = std::ceil(static_cast<double>(points.size()) / static_cast<double>(tile));
    const size_t slice = tile * static_cast<size_t>(std::ceil(std::sqrt(leaves)));
    for (size_t at = 0; at < order.size(); at += slice) {
        const size_t count = std::min(slice, order.size() - at);
        sortByKey(std::span(order).subspan(at, count), std::span(spare).subspan(at, count));
    }
    std::vector<uint32_t> places;
    places.reserve(order.size());
    for (const Keyed& item : order)
        places.push_back(item.place);
    return places;
}

}  // namespace sg
