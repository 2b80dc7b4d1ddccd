#pragma once

#include <cmath>

#include "base/export.h"
#include "platform/ge/tol.h"

// A direction and length in the plane, in drawing units. Angles are in radians, counter-clockwise
// from the x axis.
class SG_API AcGeVector2d {
  public:
    double x = 0;
    double y = 0;

    static const AcGeVector2d kIdentity;  // the zero vector
    static const AcGeVector2d kXAxis;
    static const AcGeVector2d kYAxis;

    constexpr AcGeVector2d() = default;
    constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

    constexpr AcGeVector2d& set(double xx, double yy) { return *this = AcGeVector2d(xx, yy); }

    // Component 0 is x, any other is y.
    constexpr double operator[](unsigned int i) const { return i == 0 ? x : y; }
    constexpr double& operator[](unsigned int i) { return i == 0 ? x : y; }

    constexpr AcGeVector2d operator-() const { return {-x, -y}; }
    constexpr AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    constexpr AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    constexpr AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
    constexpr AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
    constexpr AcGeVector2d& operator+=(const AcGeVector2d& v) { return *this = *this + v; }
    constexpr AcGeVector2d& operator-=(const AcGeVector2d& v) { return *this = *this - v; }
    constexpr AcGeVector2d& operator*=(double s) { return *this = *this * s; }
    constexpr AcGeVector2d& operator/=(double s) { return *this = *this / s; }
    constexpr AcGeVector2d& negate() { return *this = -*this; }

    constexpr double lengthSqrd() const { return x * x + y * y; }
    double length() const { return std::sqrt(lengthSqrd()); }
    constexpr double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }

    // The same length, a quarter turn counter-clockwise.
    constexpr AcGeVector2d perpVector() const { return {-y, x}; }

    // The unit vector of the same direction. A vector that is zero within `tol` stays as it is.
    AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }

    // The angle from the x axis, in [0, 2 pi); 0 for the zero vector.
    double angle() const;
    // The smaller angle between the two, in [0, pi]; 0 when one is the zero vector.
    double angleTo(const AcGeVector2d& v) const;

    AcGeVector2d& rotateBy(double angle);

    // A vector that is zero within `tol` is parallel, codirectional and perpendicular to none.
    bool isParallelTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return length() <= tol.equalVector();
    }
    bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return std::abs(length() - 1) <= tol.equalVector();
    }
    bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
        return (*this - v).length() <= tol.equalVector();
    }
    bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }
    bool operator!=(const AcGeVector2d& v) const { return !isEqualTo(v); }
};

inline constexpr AcGeVector2d AcGeVector2d::kIdentity{0, 0};
inline constexpr AcGeVector2d AcGeVector2d::kXAxis{1, 0};
inline constexpr AcGeVector2d AcGeVector2d::kYAxis{0, 1};

constexpr AcGeVector2d operator*(double s, const AcGeVector2d& v) {
    return v * s;
}
