#pragma once

#include <cstdint>
#include <vector>

#include "base/export.h"
#include "platform/ge/point2d.h"

namespace sg {

// Puts points into an order in which neighbours in the plane are neighbours, for a tree with `tile`
// of them in each leaf: slices of equal numbers from left to right, each from bottom to top.
// Answers the places of the points in that order. There are fewer than 2^32 of them.
SG_API std::vector<uint32_t> tileOrder(const std::vector<AcGePoint2d>& points, size_t tile);

}  // namespace sg
