#include "platform/ge/scale3d.h"

#include <cmath>

#include "platform/ge/matrix3d.h"

bool AcGeScale3d::isProportional(const AcGeTol& tol) const {
    return std::abs(std::abs(sx) - std::abs(sy)) <= tol.equalVector() &&
           std::abs(std::abs(sy) - std::abs(sz)) <= tol.equalVector() &&
           std::abs(std::abs(sz) - std::abs(sx)) <= tol.equalVector();
}

bool AcGeScale3d::isEqualTo(const AcGeScale3d& s, const AcGeTol& tol) const {
    return AcGeVector3d(sx, sy, sz).isEqualTo(AcGeVector3d(s.sx, s.sy, s.sz), tol);
}

void AcGeScale3d::getMatrix(AcGeMatrix3d& matrix) const {
    matrix.setToIdentity();
    matrix(0, 0) = sx;
    matrix(1, 1) = sy;
    matrix(2, 2) = sz;
}
