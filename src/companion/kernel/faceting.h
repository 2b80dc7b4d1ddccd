#pragma once

#include <TopoDS_Shape.hxx>

#include "companion/kernel/kernel.h"

namespace sg::companion {

// The facets of a shape. Chords stand off curved faces by no more than a thousandth of the shape's
// size, and turn by no more than an eighth of a right angle. False when a face has none.
bool facetsOf(const TopoDS_Shape& shape, Polygons polygons, Facets& facets);

}  // namespace sg::companion
