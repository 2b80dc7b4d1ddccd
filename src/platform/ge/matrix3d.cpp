#include "platform/ge/matrix3d.h"

#include <algorithm>
#include <cmath>

namespace {

// The 2 by 2 determinants of the upper and of the lower two rows, in the order of column pairs
// 01 02 03 12 13 23. Laplace's expansion by them gives determinant and adjugate.
struct RowPairMinors {
    double upper[6];
    double lower[6];

    explicit RowPairMinors(const double (&e)[4][4]) {
        int k = 0;
        for (int i = 0; i < 4; ++i) {
            for (int j = i + 1; j < 4; ++j, ++k) {
                upper[k] = e[0][i] * e[1][j] - e[1][i] * e[0][j];
                lower[k] = e[2][i] * e[3][j] - e[3][i] * e[2][j];
            }
        }
    }

    double det() const {
        return upper[0] * lower[5] - upper[1] * lower[4] + upper[2] * lower[3] +
               upper[3] * lower[2] - upper[4] * lower[1] + upper[5] * lower[0];
    }
};

}  // namespace

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& m) const {
    AcGeMatrix3d product;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += entry[row][k] * m.entry[k][column];
            product.entry[row][column] = sum;
        }
    }
    return product;
}

double AcGeMatrix3d::det() const {
    return RowPairMinors(entry).det();
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
    const double box = axis(0).length() * axis(1).length() * axis(2).length();
    return !(std::abs(det()) > tol.equalVector() * box);
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
    if (isSingular()) return *this;
    const RowPairMinors minors(entry);
    const double(&s)[6] = minors.upper;
    const double(&c)[6] = minors.lower;
    const double(&e)[4][4] = entry;
    const double det = minors.det();
    const double adjugate[4][4] = {{e[1][1] * c[5] - e[1][2] * c[4] + e[1][3] * c[3],
                                    -e[0][1] * c[5] + e[0][2] * c[4] - e[0][3] * c[3],
                                    e[3][1] * s[5] - e[3][2] * s[4] + e[3][3] * s[3],
                                    -e[2][1] * s[5] + e[2][2] * s[4] - e[2][3] * s[3]},
                                   {-e[1][0] * c[5] + e[1][2] * c[2] - e[1][3] * c[1],
                                    e[0][0] * c[5] - e[0][2] * c[2] + e[0][3] * c[1],
                                    -e[3][0] * s[5] + e[3][2] * s[2] - e[3][3] * s[1],
                                    e[2][0] * s[5] - e[2][2] * s[2] + e[2][3] * s[1]},
                                   {e[1][0] * c[4] - e[1][1] * c[2] + e[1][3] * c[0],
                                    -e[0][0] * c[4] + e[0][1] * c[2] - e[0][3] * c[0],
                                    e[3][0] * s[4] - e[3][1] * s[2] + e[3][3] * s[0],
                                    -e[2][0] * s[4] + e[2][1] * s[2] - e[2][3] * s[0]},
                                   {-e[1][0] * c[3] + e[1][1] * c[1] - e[1][2] * c[0],
                                    e[0][0] * c[3] - e[0][1] * c[1] + e[0][2] * c[0],
                                    -e[3][0] * s[3] + e[3][1] * s[1] - e[3][2] * s[0],
                                    e[2][0] * s[3] - e[2][1] * s[1] + e[2][2] * s[0]}};
    AcGeMatrix3d result;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            result.entry[row][column] = adjugate[row][column] / det;
        }
    }
    return result;
}

AcGeMatrix3d AcGeMatrix3d::transpose() const {
    AcGeMatrix3d result;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            result.entry[row][column] = entry[column][row];
        }
    }
    return result;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol) const {
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const bool isTranslation = column == 3 && row < 3;
            const double allowed = isTranslation ? tol.equalPoint() : tol.equalVector();
            if (!(std::abs(entry[row][column] - m.entry[row][column]) <= allowed)) return false;
        }
    }
    return true;
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol& tol) const {
    const AcGeVector3d x = axis(0);
    const AcGeVector3d y = axis(1);
    const AcGeVector3d z = axis(2);
    const double size = scale();
    const auto isShorter = [&](const AcGeVector3d& v) {
        return size - v.length() > tol.equalVector() * size;
    };
    if (isShorter(x) || isShorter(y) || isShorter(z)) return false;
    return x.isPerpendicularTo(y, tol) && y.isPerpendicularTo(z, tol) &&
           z.isPerpendicularTo(x, tol);
}

double AcGeMatrix3d::scale() const {
    return std::max({axis(0).length(), axis(1).length(), axis(2).length()});
}

AcGeMatrix3d& AcGeMatrix3d::setTranslation(const AcGeVector3d& v) {
    entry[0][3] = v.x;
    entry[1][3] = v.y;
    entry[2][3] = v.z;
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                           const AcGeVector3d& yAxis, const AcGeVector3d& zAxis) {
    AcGeMatrix3d result;
    for (unsigned int row = 0; row < 3; ++row) {
        result.entry[row][0] = xAxis[row];
        result.entry[row][1] = yAxis[row];
        result.entry[row][2] = zAxis[row];
        result.entry[row][3] = origin[row];
    }
    return *this = result;
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                                  AcGeVector3d& zAxis) const {
    xAxis = axis(0);
    yAxis = axis(1);
    zAxis = axis(2);
    origin = AcGePoint3d::kOrigin + translation();
}

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& v) {
    return setToIdentity().setTranslation(v);
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d& axis,
                                          const AcGePoint3d& center) {
    const double length = axis.length();
    if (length == 0) return setToIdentity();
    const AcGeVector3d k = axis / length;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    // Rodrigues' formula, one image of an axis at a time.
    const auto turned = [&](const AcGeVector3d& v) {
        return v * c + k.crossProduct(v) * s + k * (k.dotProduct(v) * (1 - c));
    };
    setCoordSystem(AcGePoint3d::kOrigin, turned(AcGeVector3d::kXAxis), turned(AcGeVector3d::kYAxis),
                   turned(AcGeVector3d::kZAxis));
    return setTranslation(center - *this * center);
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double factor, const AcGePoint3d& center) {
    return setCoordSystem(AcGePoint3d::kOrigin + (1 - factor) * center.asVector(),
                          factor * AcGeVector3d::kXAxis, factor * AcGeVector3d::kYAxis,
                          factor * AcGeVector3d::kZAxis);
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& center) {
    return setToScaling(-1, center);
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& pointOnPlane,
                                           const AcGeVector3d& normal) {
    AcGeVector3d x = AcGeVector3d::kXAxis;
    AcGeVector3d y = AcGeVector3d::kYAxis;
    AcGeVector3d z = AcGeVector3d::kZAxis;
    const AcGePoint3d origin = pointOnPlane - pointOnPlane.asVector().mirror(normal);
    return setCoordSystem(origin, x.mirror(normal), y.mirror(normal), z.mirror(normal));
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(
    const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis, const AcGeVector3d& fromYAxis,
    const AcGeVector3d& fromZAxis, const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
    const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
    AcGeMatrix3d from;
    from.setCoordSystem(fromOrigin, fromXAxis, fromYAxis, fromZAxis);
    AcGeMatrix3d to;
    to.setCoordSystem(toOrigin, toXAxis, toYAxis, toZAxis);
    return from.isSingular() ? setToIdentity() : setToProduct(to, from.inverse());
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d& normal) {
    if (normal.isZeroLength()) return setToIdentity();
    const AcGeVector3d z = normal.normal();
    const AcGeVector3d x = z.perpVector();
    return setCoordSystem(AcGePoint3d::kOrigin, x, z.crossProduct(x).normal(), z);
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d& normal) {
    // A turn about the origin: its transpose undoes it, without rounding.
    return setToPlaneToWorld(normal).transposeIt();
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& v) {
    return AcGeMatrix3d().setToTranslation(v);
}

AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d& axis,
                                    const AcGePoint3d& center) {
    return AcGeMatrix3d().setToRotation(angle, axis, center);
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d& center) {
    return AcGeMatrix3d().setToScaling(factor, center);
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d& center) {
    return AcGeMatrix3d().setToMirroring(center);
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d& pointOnPlane, const AcGeVector3d& normal) {
    return AcGeMatrix3d().setToMirroring(pointOnPlane, normal);
}

AcGeMatrix3d AcGeMatrix3d::alignCoordSys(const AcGePoint3d& fromOrigin,
                                         const AcGeVector3d& fromXAxis,
                                         const AcGeVector3d& fromYAxis,
                                         const AcGeVector3d& fromZAxis, const AcGePoint3d& toOrigin,
                                         const AcGeVector3d& toXAxis, const AcGeVector3d& toYAxis,
                                         const AcGeVector3d& toZAxis) {
    return AcGeMatrix3d().setToAlignCoordSys(fromOrigin, fromXAxis, fromYAxis, fromZAxis, toOrigin,
                                             toXAxis, toYAxis, toZAxis);
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
    return AcGeMatrix3d().setToPlaneToWorld(normal);
}

AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d& normal) {
    return AcGeMatrix3d().setToWorldToPlane(normal);
}

AcGeMatrix3d AcGeMatrix3d::planeToPlane(const AcGeVector3d& fromNormal,
                                        const AcGeVector3d& toNormal) {
    return worldToPlane(toNormal) * planeToWorld(fromNormal);
}
