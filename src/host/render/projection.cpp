#include "host/render/projection.h"

namespace sg::render {

AcGeMatrix3d worldToView(const AcGeVector3d& towardsEye, const AcGePoint3d& target, double twist) {
    const AcGeVector3d eye = towardsEye.isZeroLength() ? AcGeVector3d::kZAxis : towardsEye.normal();
    return AcGeMatrix3d::rotation(twist, AcGeVector3d::kZAxis) * AcGeMatrix3d::worldToPlane(eye) *
           AcGeMatrix3d::translation(AcGePoint3d::kOrigin - target);
}

Projection::Projection(const AcGeMatrix3d& worldToView, double pixelsPerUnit,
                       const AcGePoint2d& viewPoint, const AcGePoint2d& pixel)
    : scale_(pixelsPerUnit) {
    for (unsigned int column = 0; column < 4; ++column) {
        x_[column] = worldToView(0, column) * scale_;
        y_[column] = -worldToView(1, column) * scale_;
    }
    x_[3] += pixel.x - viewPoint.x * scale_;
    y_[3] += pixel.y + viewPoint.y * scale_;
}

}  // namespace sg::render
