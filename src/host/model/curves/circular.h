#pragma once

#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"

namespace sg::model {

// A circle's arc in the plane with this normal, whose parameters are the plane's angles.
inline Piece circularPiece(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                           double first, double last) {
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
    return Piece::conic(center, plane * AcGeVector3d(radius, 0, 0),
                        plane * AcGeVector3d(0, radius, 0), first, last);
}

}  // namespace sg::model
