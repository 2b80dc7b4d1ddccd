#pragma once

#include <optional>

#include "companion/shape/body.h"
#include "platform/db/extents.h"

namespace sg::companion {

// The box around bodies, found without making them, to a ten-thousandth of their curves' radii.
// Nothing when something is cut off them, and for no bodies.
std::optional<AcDbExtents> reachOf(const Steps& steps);

}  // namespace sg::companion
