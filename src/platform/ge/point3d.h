#pragma once

#include "base/export.h"
#include "platform/ge/vector3d.h"

// A place in space, in drawing units.
class SG_API AcGePoint3d {
  public:
    double x = 0;
    double y = 0;
    double z = 0;

    static const AcGePoint3d kOrigin;

    constexpr AcGePoint3d() = default;
    constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    constexpr AcGePoint3d& set(double xx, double yy, double zz) {
        return *this = AcGePoint3d(xx, yy, zz);
    }

    // Component 0 is x, 1 is y, any other is z.
    constexpr double operator[](unsigned int i) const { return i == 0 ? x : i == 1 ? y : z; }
    constexpr double& operator[](unsigned int i) { return i == 0 ? x : i == 1 ? y : z; }

    constexpr AcGePoint3d operator+(const AcGeVector3d& v) const {
        return {x + v.x, y + v.y, z + v.z};
    }
    constexpr AcGePoint3d operator-(const AcGeVector3d& v) const {
        return {x - v.x, y - v.y, z - v.z};
    }
    constexpr AcGeVector3d operator-(const AcGePoint3d& p) const {
        return {x - p.x, y - p.y, z - p.z};
    }
    constexpr AcGePoint3d operator*(double s) const { return {x * s, y * s, z * s}; }
    constexpr AcGePoint3d operator/(double s) const { return {x / s, y / s, z / s}; }
    constexpr AcGePoint3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
    constexpr AcGePoint3d& operator-=(const AcGeVector3d& v) { return *this = *this - v; }
    constexpr AcGePoint3d& operator*=(double s) { return *this = *this * s; }
    constexpr AcGePoint3d& operator/=(double s) { return *this = *this / s; }

    // The vector from the origin to this point.
    constexpr AcGeVector3d asVector() const { return {x, y, z}; }

    double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }

    // Turns this point about the line through `center` along `axis`, counter-clockwise seen against
    // the axis, by an angle in radians. A zero axis turns nothing.
    AcGePoint3d& rotateBy(double angle, const AcGeVector3d& axis,
                          const AcGePoint3d& center = kOrigin) {
        return *this = center + (*this - center).rotateBy(angle, axis);
    }
    constexpr AcGePoint3d& scaleBy(double factor, const AcGePoint3d& center = kOrigin) {
        return *this = center + factor * (*this - center);
    }
    AcGePoint3d& transformBy(const AcGeMatrix3d& matrix);

    bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
    bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
    bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }
};

inline constexpr AcGePoint3d AcGePoint3d::kOrigin{0, 0, 0};

constexpr AcGePoint3d operator*(double s, const AcGePoint3d& p) {
    return p * s;
}
