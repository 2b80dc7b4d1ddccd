#pragma once

#include "companion/kernel/kernel.h"

namespace sg::companion {

// Keeps the shapes that were used last, since their boundaries take far more memory than the steps
// that make them.
void keepShape(const ShapePtr& shape);
void forgetShapes();

}  // namespace sg::companion
