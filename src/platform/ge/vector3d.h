#pragma once

#include <cmath>

#include "base/export.h"
#include "platform/ge/tol.h"

class AcGeMatrix3d;

// A direction and length in space, in drawing units. Angles are in radians; turns about an axis are
// counter-clockwise seen against it.
class SG_API AcGeVector3d {
  public:
    double x = 0;
    double y = 0;
    double z = 0;

    static const AcGeVector3d kIdentity;  // the zero vector
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;

    constexpr AcGeVector3d() = default;
    constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    constexpr AcGeVector3d& set(double xx, double yy, double zz) {
        return *this = AcGeVector3d(xx, yy, zz);
    }

    // Component 0 is x, 1 is y, any other is z.
    constexpr double operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    constexpr double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }

    constexpr AcGeVector3d operator-() const { return {-x, -y, -z}; }
    constexpr AcGeVector3d operator+(const AcGeVector3d& v) const {
        return {x + v.x, y + v.y, z + v.z};
    }
    constexpr AcGeVector3d operator-(const AcGeVector3d& v) const {
        return {x - v.x, y - v.y, z - v.z};
    }
    constexpr AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    constexpr AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
    constexpr AcGeVector3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
    constexpr AcGeVector3d& operator-=(const AcGeVector3d& v) { return *this = *this - v; }
    constexpr AcGeVector3d& operator*=(double s) { return *this = *this * s; }
    constexpr AcGeVector3d& operator/=(double s) { return *this = *this / s; }
    constexpr AcGeVector3d& negate() { return *this = -*this; }

    constexpr double lengthSqrd() const { return x * x + y * y + z * z; }
    double length() const { return std::sqrt(lengthSqrd()); }
    constexpr double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    constexpr AcGeVector3d crossProduct(const AcGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }

    // A unit vector at a right angle to this one: the x axis that the arbitrary axis algorithm
    // gives to the plane of which this vector is the normal. The zero vector for the zero vector.
    AcGeVector3d perpVector() const;

    // The unit vector of the same direction. A vector that is zero within `tol` stays as it is.
    AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }

    // The smaller angle between the two, in [0, pi]; 0 when one is the zero vector.
    double angleTo(const AcGeVector3d& v) const;
    // The angle from this vector to `v`, counter-clockwise seen against `reference`, in [0, 2 pi).
    double angleTo(const AcGeVector3d& v, const AcGeVector3d& reference) const;

    // Turns this vector about `axis`, of any length; a zero axis turns nothing.
    AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis);
    // Reflects this vector in the plane through the origin with the normal `planeNormal`.
    AcGeVector3d& mirror(const AcGeVector3d& planeNormal);
    // Applies the matrix without its translation.
    AcGeVector3d& transformBy(const AcGeMatrix3d& matrix);

    // A vector that is zero within `tol` is parallel, codirectional and perpendicular to none.
    bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return length() <= tol.equalVector();
    }
    bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return std::abs(length() - 1) <= tol.equalVector();
    }
    bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
        return (*this - v).length() <= tol.equalVector();
    }
    bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }
    bool operator!=(const AcGeVector3d& v) const { return !isEqualTo(v); }
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{0, 0, 0};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1, 0, 0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0, 1, 0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0, 0, 1};

constexpr AcGeVector3d operator*(double s, const AcGeVector3d& v) {
    return v * s;
}
