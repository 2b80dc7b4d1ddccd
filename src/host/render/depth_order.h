#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/ge/point3d.h"

namespace sg::render {

// What is put in order: a plane area between closed chains, or a line between two points.
struct DepthItem {
    uint32_t source = 0;  // for whoever draws it
    bool isLine = false;
    std::vector<AcGePoint3d> points;
    std::vector<uint32_t> counts;  // of the chains of an area
    AcGeVector3d normal;           // of an area, of length 1
};

// Gives the items to `draw` so that each comes behind those that it hides, seen from far away in
// the direction `towardsEye`. Items that pass through each other come in parts. Lines in the plane
// of an area come behind it. With more items than can be cut up in good time they come by their
// distance, and overlap wrongly where they pass through each other.
void drawFromBehind(std::vector<DepthItem> items, const AcGeVector3d& towardsEye,
                    const std::function<void(const DepthItem&)>& draw);

}  // namespace sg::render
