#include "host/editor/selection/tile_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>

#include "host/editor/selection/region.h"

namespace {

using sg::Box2d;
using Points = std::vector<AcGePoint2d>;

constexpr size_t kTile = 16;

// The area of the boxes around each leaf, in parts of that around all.
double covered(const Points& points, const std::vector<uint32_t>& order) {
    const auto areaOf = [](const Box2d& b) { return (b.right - b.left) * (b.top - b.bottom); };
    Box2d whole;
    double sum = 0;
    for (size_t first = 0; first < order.size(); first += kTile) {
        Box2d leaf;
        for (size_t i = first; i < std::min(first + kTile, order.size()); ++i)
            leaf.add(points[order[i]].x, points[order[i]].y);
        sum += areaOf(leaf);
        whole.add(leaf);
    }
    return sum / areaOf(whole);
}

Points scattered(size_t count, double originX, double originY) {
    Points points;
    unsigned random = 1;
    const auto next = [&random] { return (random = random * 1664525u + 1013904223u) >> 8; };
    for (size_t i = 0; i < count; ++i) {
        const double x = originX + next() % 10'000;
        points.emplace_back(x, originY + next() % 7'000);
    }
    return points;
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
        const Points points = scattered(20'000, x, y);
        EXPECT_LT(covered(points, sg::tileOrder(points, kTile)), 1.0) << name;
    }
}

TEST(TileOrder, GoesFromBottomToTopWithinASlice) {
    Points points;
    for (int i = 0; i < 16; ++i)
        points.emplace_back(i * 7 % 16, i);  // one slice: one leaf
    std::vector<uint32_t> expected(points.size());
    std::iota(expected.begin(), expected.end(), 0u);
    EXPECT_EQ(sg::tileOrder(points, kTile), expected);
}

TEST(TileOrder, EndsWithPointsThatAreNone) {
    const double endless = std::numeric_limits<double>::infinity();
    Points points(40, {3, 3});
    points[7] = {-endless, endless};
    points[8] = {std::nan(""), 1};
    EXPECT_EQ(sg::tileOrder(points, kTile).size(), points.size());
}

}  // namespace
