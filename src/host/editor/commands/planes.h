#pragma once

#include <cmath>

#include "host/editor/commands/command.h"
#include "platform/ge/matrix3d.h"

// Where flat entities lie when they are drawn in the user coordinate system.
namespace sg::commands {

// The z axis of the user coordinate system, in world coordinates.
inline AcGeVector3d drawingNormal(const Command& c) {
    return c.world(AcGeVector3d::kZAxis).normal();
}

// The angle of a direction of the world from the x axis of the plane with this normal.
inline double angleOnPlane(const AcGeVector3d& normal, const AcGeVector3d& direction) {
    const AcGeVector3d onPlane = AcGeMatrix3d::worldToPlane(normal) * direction;
    return std::atan2(onPlane.y, onPlane.x);
}

// The same for an angle from the user coordinate system's x axis.
inline double angleOnPlane(const Command& c, double userAngle) {
    return angleOnPlane(drawingNormal(c),
                        c.world(AcGeVector3d(std::cos(userAngle), std::sin(userAngle), 0)));
}

}  // namespace sg::commands
