#include "platform/ge/vector3d.h"

#include <numbers>

#include "platform/ge/matrix3d.h"

AcGeVector3d AcGeVector3d::perpVector() const {
    // 1/64 is the algorithm's own bound: exact in binary, so that every program takes the same
    // side.
    constexpr double kNearZ = 1.0 / 64;
    const AcGeVector3d n = normal();
    const bool nearZ = std::abs(n.x) < kNearZ && std::abs(n.y) < kNearZ;
    return (nearZ ? kYAxis : kZAxis).crossProduct(n).normal();
}

AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const {
    return isZeroLength(tol) ? *this : *this / length();
}

double AcGeVector3d::angleTo(const AcGeVector3d& v) const {
    // The arc tangent keeps its accuracy near 0 and pi, where the arc cosine loses half the digits.
    return std::atan2(crossProduct(v).length(), dotProduct(v));
}

double AcGeVector3d::angleTo(const AcGeVector3d& v, const AcGeVector3d& reference) const {
    constexpr double kTurn = 2 * std::numbers::pi;
    const double a = angleTo(v);
    if (crossProduct(v).dotProduct(reference) >= 0) return a;
    // An angle barely below the full turn rounds to it.
    return kTurn - a < kTurn ? kTurn - a : 0;
}

AcGeVector3d& AcGeVector3d::rotateBy(double angle, const AcGeVector3d& axis) {
    return transformBy(AcGeMatrix3d::rotation(angle, axis));
}

AcGeVector3d& AcGeVector3d::mirror(const AcGeVector3d& planeNormal) {
    const AcGeVector3d n = planeNormal.normal();
    return *this -= 2 * dotProduct(n) * n;
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& matrix) {
    return *this = matrix * *this;
}

bool AcGeVector3d::isParallelTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return isCodirectionalTo(v, tol) || isCodirectionalTo(-v, tol);
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    if (isZeroLength(tol) || v.isZeroLength(tol)) return false;
    return (*this / length()).isEqualTo(v / v.length(), tol);
}

bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    if (isZeroLength(tol) || v.isZeroLength(tol)) return false;
    return std::abs((*this / length()).dotProduct(v / v.length())) <= tol.equalVector();
}
