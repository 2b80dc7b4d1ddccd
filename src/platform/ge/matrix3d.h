#pragma once

#include "base/export.h"
#include "platform/ge/point3d.h"
#include "platform/ge/tol.h"
#include "platform/ge/vector3d.h"

// A transformation of space. entry[row][column] multiplies column vectors from the left, so that in
// `a * b` it is b that acts first. The first three columns hold the images of the axes, the fourth
// the image of the origin; the last row is 0 0 0 1 in every matrix that is made here, but for a
// transpose, and transforming points and vectors does not read it. Angles are in radians.
class SG_API AcGeMatrix3d {
  public:
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    static const AcGeMatrix3d kIdentity;

    constexpr AcGeMatrix3d() = default;

    // Rows and columns are 0 to 3.
    constexpr double operator()(unsigned int row, unsigned int column) const {
        return entry[row][column];
    }
    constexpr double& operator()(unsigned int row, unsigned int column) {
        return entry[row][column];
    }

    AcGeMatrix3d operator*(const AcGeMatrix3d& m) const;
    AcGeMatrix3d& operator*=(const AcGeMatrix3d& m) { return *this = *this * m; }
    AcGeMatrix3d& preMultBy(const AcGeMatrix3d& left) { return *this = left * *this; }
    AcGeMatrix3d& postMultBy(const AcGeMatrix3d& right) { return *this = *this * right; }
    AcGeMatrix3d& setToProduct(const AcGeMatrix3d& left, const AcGeMatrix3d& right) {
        return *this = left * right;
    }

    AcGeMatrix3d& setToIdentity() { return *this = AcGeMatrix3d(); }

    double det() const;
    // True when the matrix flattens space: the determinant is zero within tol.equalVector() of that
    // of a box with the same edge lengths. Small scales alone do not make a matrix singular.
    bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;
    // A singular matrix is left, or answered, as it is: ask isSingular() where it may be one.
    AcGeMatrix3d inverse() const;
    AcGeMatrix3d& invert() { return *this = inverse(); }
    AcGeMatrix3d transpose() const;
    AcGeMatrix3d& transposeIt() { return *this = transpose(); }

    // Entry by entry: the translation within tol.equalPoint(), the rest within tol.equalVector().
    bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const;
    bool operator==(const AcGeMatrix3d& m) const { return isEqualTo(m); }
    bool operator!=(const AcGeMatrix3d& m) const { return !isEqualTo(m); }

    // True when the axes' images are as long as each other and at right angles, mirrored or not:
    // circles stay circles.
    bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
    // The length of the longest image of an axis.
    double scale() const;

    // Translation alone is replaced, or read.
    AcGeMatrix3d& setTranslation(const AcGeVector3d& v);
    AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }

    // The matrix that takes world coordinates' origin and axes to these.
    AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                 const AcGeVector3d& yAxis, const AcGeVector3d& zAxis);
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                        AcGeVector3d& zAxis) const;

    AcGeMatrix3d& setToTranslation(const AcGeVector3d& v);
    // A turn about the line through `center` along `axis`, counter-clockwise seen against the axis,
    // which may have any length. The identity for a zero axis.
    AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                                const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToScaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    // Reflection in a point.
    AcGeMatrix3d& setToMirroring(const AcGePoint3d& center);
    // Reflection in the plane through `pointOnPlane`. The identity for a zero normal.
    AcGeMatrix3d& setToMirroring(const AcGePoint3d& pointOnPlane, const AcGeVector3d& normal);
    // The matrix that takes the one origin and axes to the other. Identity if the first axes lie in
    // one plane.
    AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                     const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                     const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                     const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
    // From coordinates of the plane through the origin with this normal, whose axes the arbitrary
    // axis algorithm gives, to world coordinates; and back. The identity for a zero normal.
    AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normal);
    AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normal);

    // The same as values.
    static AcGeMatrix3d translation(const AcGeVector3d& v);
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                                 const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d mirroring(const AcGePoint3d& center);
    static AcGeMatrix3d mirroring(const AcGePoint3d& pointOnPlane, const AcGeVector3d& normal);
    static AcGeMatrix3d alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                      const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                      const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                      const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
    static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
    static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal);
    // From coordinates of the plane with the first normal to those of the plane with the second.
    static AcGeMatrix3d planeToPlane(const AcGeVector3d& fromNormal, const AcGeVector3d& toNormal);

  private:
    AcGeVector3d axis(int column) const {
        return {entry[0][column], entry[1][column], entry[2][column]};
    }
};

inline constexpr AcGeMatrix3d AcGeMatrix3d::kIdentity{};

inline AcGeVector3d operator*(const AcGeMatrix3d& m, const AcGeVector3d& v) {
    const auto& e = m.entry;
    return {e[0][0] * v.x + e[0][1] * v.y + e[0][2] * v.z,
            e[1][0] * v.x + e[1][1] * v.y + e[1][2] * v.z,
            e[2][0] * v.x + e[2][1] * v.y + e[2][2] * v.z};
}

inline AcGePoint3d operator*(const AcGeMatrix3d& m, const AcGePoint3d& p) {
    return AcGePoint3d::kOrigin + (m * p.asVector() + m.translation());
}
