#pragma once

#include <memory>

#include "companion/kernel/kernel.h"

namespace sg::companion {

// The facets of the transformed bodies; null for null. The matrix keeps circles circles.
std::unique_ptr<const Facets> transformed(const Facets* facets, const AcGeMatrix3d& matrix);

}  // namespace sg::companion
