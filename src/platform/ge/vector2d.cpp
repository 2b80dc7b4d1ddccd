#include "platform/ge/vector2d.h"

#include <numbers>

AcGeVector2d AcGeVector2d::normal(const AcGeTol& tol) const {
    return isZeroLength(tol) ? *this : *this / length();
}

double AcGeVector2d::angle() const {
    constexpr double kTurn = 2 * std::numbers::pi;
    if (x == 0 && y == 0) return 0;
    double a = std::atan2(y, x);
    if (a < 0) a += kTurn;
    // An angle barely below zero rounds to the full turn.
    return a < kTurn ? a : 0;
}

double AcGeVector2d::angleTo(const AcGeVector2d& v) const {
    // The arc tangent keeps its accuracy near 0 and pi, where the arc cosine loses half the digits.
    return std::atan2(std::abs(x * v.y - y * v.x), dotProduct(v));
}

AcGeVector2d& AcGeVector2d::rotateBy(double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return set(c * x - s * y, s * x + c * y);
}

bool AcGeVector2d::isParallelTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    return isCodirectionalTo(v, tol) || isCodirectionalTo(-v, tol);
}

bool AcGeVector2d::isCodirectionalTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    if (isZeroLength(tol) || v.isZeroLength(tol)) return false;
    return (*this / length()).isEqualTo(v / v.length(), tol);
}

bool AcGeVector2d::isPerpendicularTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    if (isZeroLength(tol) || v.isZeroLength(tol)) return false;
    return std::abs((*this / length()).dotProduct(v / v.length())) <= tol.equalVector();
}
