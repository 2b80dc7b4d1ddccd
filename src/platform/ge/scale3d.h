#pragma once

#include "base/export.h"
#include "platform/ge/tol.h"

class AcGeMatrix3d;

// Scale factors along the three axes.
class SG_API AcGeScale3d {
  public:
    double sx = 1;
    double sy = 1;
    double sz = 1;

    static const AcGeScale3d kIdentity;

    constexpr AcGeScale3d() = default;
    constexpr explicit AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
    constexpr AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

    constexpr AcGeScale3d& set(double x, double y, double z) {
        return *this = AcGeScale3d(x, y, z);
    }

    // Factor 0 is x, 1 is y, any other is z.
    constexpr double operator[](unsigned int i) const { return i == 0 ? sx : i == 1 ? sy : sz; }
    constexpr double& operator[](unsigned int i) { return i == 0 ? sx : i == 1 ? sy : sz; }

    // Axis by axis: the one scaling after the other.
    constexpr AcGeScale3d operator*(const AcGeScale3d& s) const {
        return {sx * s.sx, sy * s.sy, sz * s.sz};
    }
    constexpr AcGeScale3d operator*(double s) const { return {sx * s, sy * s, sz * s}; }
    constexpr AcGeScale3d& operator*=(const AcGeScale3d& s) { return *this = *this * s; }
    constexpr AcGeScale3d& operator*=(double s) { return *this = *this * s; }

    // The scaling that undoes this one. No factor may be zero.
    constexpr AcGeScale3d inverse() const { return {1 / sx, 1 / sy, 1 / sz}; }
    constexpr AcGeScale3d& invert() { return *this = inverse(); }

    // True when the three factors are the same size, whatever their signs.
    bool isProportional(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isEqualTo(const AcGeScale3d& s, const AcGeTol& tol = AcGeContext::gTol) const;
    bool operator==(const AcGeScale3d& s) const { return isEqualTo(s); }
    bool operator!=(const AcGeScale3d& s) const { return !isEqualTo(s); }

    // Sets `matrix` to this scaling about the origin.
    void getMatrix(AcGeMatrix3d& matrix) const;
};

inline constexpr AcGeScale3d AcGeScale3d::kIdentity{1, 1, 1};

constexpr AcGeScale3d operator*(double s, const AcGeScale3d& scale) {
    return scale * s;
}
