#pragma once

#include <optional>
#include <span>

#include "companion/shape/body.h"

namespace sg::companion {

// A sheet of metal. The points go along one of its edges and back along the opposite one: the bound
// of a plane sheet; else each point belongs to the one over against it, and the sheet is bent along
// the lines between them. The sheet has the points on one side, and the thickness beyond them: on
// the side from which they go round counter-clockwise, on the other one if it is below 0.
//
// Nothing for fewer than three points, no thickness, points in one line or in one place, and for a
// bound that crosses itself.
std::optional<Body> skinBody(std::span<const AcGePoint3d> points, double thickness);

}  // namespace sg::companion
