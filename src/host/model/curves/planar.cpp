#include "host/model/curves/planar.h"

#include <algorithm>
#include <cmath>

#include "host/model/curves/math/angles.h"

namespace sg::model {

PlanarTransform::PlanarTransform(const AcGeVector3d& oldNormal, const AcGeMatrix3d& transform) {
    const AcGeMatrix3d planeToWorld = AcGeMatrix3d::planeToWorld(oldNormal);
    const AcGeVector3d x = transform * (planeToWorld * AcGeVector3d::kXAxis);
    const AcGeVector3d y = transform * (planeToWorld * AcGeVector3d::kYAxis);
    const AcGeVector3d up = transform * oldNormal.normal();
    const AcGeVector3d across = x.crossProduct(y);
    const double longest = std::max(x.length(), y.length());
    flattens = across.length() <= 1e-10 * longest * longest;
    if (flattens) {
        normal = oldNormal;
        return;
    }
    turnsOver = across.dotProduct(up) < 0;
    normal = across / (turnsOver ? -across.length() : across.length());
    scale = std::sqrt(across.length());
    similar = std::abs(x.length() - y.length()) <= 1e-9 * longest &&
              std::abs(x.dotProduct(y)) <= 1e-9 * longest * longest;
    thicknessScale = up.dotProduct(normal);
    upright = (up - normal * thicknessScale).length() <= 1e-9 * std::max(up.length(), longest);
    ocs = AcGeMatrix3d::worldToPlane(normal) * transform * planeToWorld;
}

double PlanarTransform::angle(double old) const {
    const AcGeVector3d direction = ocs * AcGeVector3d(std::cos(old), std::sin(old), 0);
    return normalAngle(std::atan2(direction.y, direction.x));
}

double normalAngle(double angle) {
    constexpr double kTurn = 2 * std::numbers::pi;
    if (angle >= 0 && angle < kTurn) return angle;
    const double inside = std::fmod(angle, kTurn);
    const double risen = inside < 0 ? inside + kTurn : inside;
    return risen < kTurn ? risen : 0;
}

bool setUnit(AcGeVector3d& normal, const AcGeVector3d& given) {
    const double length = given.length();
    if (!(length > 0) || !std::isfinite(length)) return false;
    normal = given / length;
    return true;
}

}  // namespace sg::model
