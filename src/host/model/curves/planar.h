#pragma once

#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

namespace sg::model {

// What a transform does to an entity that is described in the coordinates of its plane.
struct PlanarTransform {
    AcGeVector3d normal;  // of the plane afterwards; on the side where the transform takes it
    AcGeMatrix3d ocs;     // from the coordinates of the old plane to those of the new one
    double scale = 1;     // of lengths in the plane, when it is a similarity there
    double thicknessScale = 1;
    bool similar = false;    // circles in the plane stay circles
    bool upright = false;    // what stood at a right angle on the plane still does
    bool turnsOver = false;  // counter-clockwise becomes clockwise
    bool flattens = false;   // the plane becomes a line or a point

    PlanarTransform(const AcGeVector3d& oldNormal, const AcGeMatrix3d& transform);

    // True for an entity of arcs that may have thickness.
    bool keepsArcs(double thickness) const {
        return !flattens && similar && (thickness == 0 || upright);
    }
    double angle(double old) const;  // of a direction in the plane, in [0, one turn)
};

// The point of the plane, at this height over the origin's plane, in world coordinates.
inline AcGePoint3d fromPlane(const AcGeMatrix3d& planeToWorld, const AcGePoint2d& point,
                             double elevation) {
    return planeToWorld * AcGePoint3d(point.x, point.y, elevation);
}

// The angle by whole turns in [0, one turn).
double normalAngle(double angle);

// The direction of a new normal; eInvalidInput's case, a vector without direction, answers false.
bool setUnit(AcGeVector3d& normal, const AcGeVector3d& given);

}  // namespace sg::model
