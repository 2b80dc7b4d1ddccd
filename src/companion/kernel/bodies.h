#pragma once

#include <TopoDS_Shape.hxx>
#include <vector>

#include "companion/shape/body.h"

namespace sg::companion {

// The solid of a body, sound or not; null when there is none. Faults of the library go on.
TopoDS_Shape solidOf(const Body& body);

// Whether a solid is closed, valid and has its inside within.
bool isSound(const TopoDS_Shape& solid);
double volumeOf(const TopoDS_Shape& shape);

// --- What is done with solids. Each answers sound solids, or false and nothing.

using Solids = std::vector<TopoDS_Shape>;

bool cut(const TopoDS_Shape& solid, const TopoDS_Shape& tool, Solids& parts);
bool fuse(const Solids& solids, Solids& parts);
// What of a solid is on the side that the normal points to; it may be nothing.
bool slice(const TopoDS_Shape& solid, const AcGePoint3d& point, const AcGeVector3d& normal,
           Solids& parts);

}  // namespace sg::companion
