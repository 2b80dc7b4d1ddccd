#pragma once

#include <cstdint>
#include <vector>

#include "base/export.h"
#include "host/editor/selection/region.h"

namespace sg {

// Puts boxes into an order in which neighbours in the plane are neighbours, for a tree with `tile`
// boxes in each leaf: slices of equal numbers from left to right, each from bottom to top. Answers
// the places of the boxes in that order. Boxes are not empty; there are fewer than 2^32.
SG_API std::vector<uint32_t> tileOrder(const std::vector<Box2d>& boxes, size_t tile);

}  // namespace sg
