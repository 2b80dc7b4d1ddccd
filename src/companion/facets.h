#pragma once

#include <memory>
#include <numbers>

#include "companion/kernel/kernel.h"

namespace sg::companion {

// What facets may stand off a curved face, in parts of the body's size, and turn from one to the
// next, and at how much of an angle faces go on smoothly; radians.
inline constexpr double kFacetDeviation = 1e-3;
inline constexpr double kFacetTurn = std::numbers::pi / 16;
inline constexpr double kSmoothEdge = 3 * std::numbers::pi / 180;

// The facets of the transformed bodies; null for null. The matrix keeps circles circles.
std::unique_ptr<const Facets> transformed(const Facets* facets, const AcGeMatrix3d& matrix);

}  // namespace sg::companion
