#pragma once

#include <memory>

#include "companion/kernel/kernel.h"

namespace sg::companion {

// The facets of a straight piece without a hole, found from its outline: the kernel takes a
// thousand times as long to make the body and its facets, and of these pieces drawings have the
// most. Null for all other steps, and for an outline without an area or along which it is moved.
std::unique_ptr<const Facets> prismFacets(const Steps& steps);

}  // namespace sg::companion
