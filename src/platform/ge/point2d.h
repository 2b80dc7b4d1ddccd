#pragma once

#include "base/export.h"
#include "platform/ge/vector2d.h"

// A place in the plane, in drawing units.
class SG_API AcGePoint2d {
  public:
    double x = 0;
    double y = 0;

    static const AcGePoint2d kOrigin;

    constexpr AcGePoint2d() = default;
    constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

    constexpr AcGePoint2d& set(double xx, double yy) { return *this = AcGePoint2d(xx, yy); }

    // Component 0 is x, any other is y.
    constexpr double operator[](unsigned int i) const { return i == 0 ? x : y; }
    constexpr double& operator[](unsigned int i) { return i == 0 ? x : y; }

    constexpr AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    constexpr AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    constexpr AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
    constexpr AcGePoint2d operator*(double s) const { return {x * s, y * s}; }
    constexpr AcGePoint2d operator/(double s) const { return {x / s, y / s}; }
    constexpr AcGePoint2d& operator+=(const AcGeVector2d& v) { return *this = *this + v; }
    constexpr AcGePoint2d& operator-=(const AcGeVector2d& v) { return *this = *this - v; }
    constexpr AcGePoint2d& operator*=(double s) { return *this = *this * s; }
    constexpr AcGePoint2d& operator/=(double s) { return *this = *this / s; }

    // The vector from the origin to this point.
    constexpr AcGeVector2d asVector() const { return {x, y}; }

    double distanceTo(const AcGePoint2d& p) const { return (*this - p).length(); }

    // Turns this point about `center`, counter-clockwise by an angle in radians.
    AcGePoint2d& rotateBy(double angle, const AcGePoint2d& center = kOrigin) {
        return *this = center + (*this - center).rotateBy(angle);
    }
    constexpr AcGePoint2d& scaleBy(double factor, const AcGePoint2d& center = kOrigin) {
        return *this = center + factor * (*this - center);
    }

    bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
    bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }
    bool operator!=(const AcGePoint2d& p) const { return !isEqualTo(p); }
};

inline constexpr AcGePoint2d AcGePoint2d::kOrigin{0, 0};

constexpr AcGePoint2d operator*(double s, const AcGePoint2d& p) {
    return p * s;
}
