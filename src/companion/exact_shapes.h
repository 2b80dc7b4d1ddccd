#pragma once

#include "platform/db/exact_shape.h"

namespace sg::companion {

// Hands out the bodies of solids. It lives as long as the module.
sgExactShapePE* exactShapes();

}  // namespace sg::companion
