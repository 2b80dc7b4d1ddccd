#pragma once

#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"
#include "host/model/tables/filing.h"

namespace sg::model {

// A circle's arc in the plane with this normal, whose parameters are the plane's angles.
inline Piece circularPiece(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                           double first, double last) {
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
    return Piece::conic(center, plane * AcGeVector3d(radius, 0, 0),
                        plane * AcGeVector3d(0, radius, 0), first, last);
}

// What a circle and its arcs keep, as the functions here work on it.
struct CircleFields {
    AcGePoint3d& center;
    double& radius;
    AcGeVector3d& normal;
    double& thickness;

    // False, and nothing changes, for what does not leave it a circle.
    bool transform(const AcGeMatrix3d& transform);
    // Takes a group behind the circle's marker; `inPlane` is the centre in the coordinates of the
    // plane, which goes to the world when all groups are there. False for another group.
    bool takeGroup(const FieldReader& field, AcGePoint3d& inPlane);
};
void writeCircle(AcDbDxfFiler* filer, const AcGePoint3d& center, double radius,
                 const AcGeVector3d& normal, double thickness);

}  // namespace sg::model
