#pragma once

#include <TopoDS_Shape.hxx>

#include "companion/shape/body.h"

namespace sg::companion {

// The solid within a boundary that is given face by face. Null unless each edge bounds two faces
// that agree on what is outside.
TopoDS_Shape stitched(const Patchwork& boundary);

}  // namespace sg::companion
