#include "host/editor/selection/tile_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>

namespace {

using sg::Box2d;

constexpr size_t kTile = 16;

Box2d at(double x, double y) {
    return {x, y, x + 1, y + 1};
}

// The area of the leaves' boxes, in parts of that of the whole.
double covered(const std::vector<Box2d>& boxes, const std::vector<uint32_t>& order) {
    const auto areaOf = [](const Box2d& b) { return (b.right - b.left) * (b.top - b.bottom); };
    Box2d whole;
    double sum = 0;
    for (size_t first = 0; first < order.size(); first += kTile) {
        Box2d leaf;
        for (size_t i = first; i < std::min(first + kTile, order.size()); ++i)
            leaf.add(boxes[order[i]]);
        sum += areaOf(leaf);
        whole.add(leaf);
    }
    return sum / areaOf(whole);
}

std::vector<Box2d> scattered(size_t count, double originX, double originY) {
    std::vector<Box2d> boxes;
    unsigned random = 1;
    const auto next = [&random] { return (random = random * 1664525u + 1013904223u) >> 8; };
    for (size_t i = 0; i < count; ++i)
        boxes.push_back(at(originX + next() % 10'000, originY + next() % 7'000));
    return boxes;
}

TEST(TileOrder, HasEveryBoxOnce) {
    for (const size_t count : {0u, 1u, 15u, 16u, 17u, 300u, 4097u}) {
        const std::vector<uint32_t> order = sg::tileOrder(scattered(count, 0, 0), kTile);
        EXPECT_EQ(order.size(), count);
        EXPECT_EQ(std::set<uint32_t>(order.begin(), order.end()).size(), count);
    }
}

TEST(TileOrder, MakesLeavesThatHardlyOverlap) {
    struct Case {
        const char* name;
        double x, y;
    };
    for (const auto& [name, x, y] : {Case{"at the origin", 0, 0}, Case{"below zero", -9e3, -5e3},
                                     Case{"far away", 5e6, -3e6}}) {
        const std::vector<Box2d> boxes = scattered(20'000, x, y);
        EXPECT_LT(covered(boxes, sg::tileOrder(boxes, kTile)), 1.5) << name;
    }
}

TEST(TileOrder, GoesFromBottomToTopWithinASlice) {
    std::vector<Box2d> boxes;
    for (int i = 0; i < 16; ++i)
        boxes.push_back(at(i * 7 % 16, i));  // one slice: one leaf
    std::vector<uint32_t> expected(boxes.size());
    std::iota(expected.begin(), expected.end(), 0u);
    EXPECT_EQ(sg::tileOrder(boxes, kTile), expected);
}

TEST(TileOrder, EndsWithInfiniteAndEqualBoxes) {
    const double endless = std::numeric_limits<double>::infinity();
    std::vector<Box2d> boxes(40, at(3, 3));
    boxes[7] = {-endless, 0, endless, 1};
    EXPECT_EQ(sg::tileOrder(boxes, kTile).size(), boxes.size());
}

}  // namespace
