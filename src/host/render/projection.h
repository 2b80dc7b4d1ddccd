#pragma once

#include "host/render/picture.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point2d.h"
#include "platform/ge/vector2d.h"

namespace sg::render {

// From the world to a view: seen along -z, its x to the right. The origin is the target; `twist`
// turns what is seen, counter-clockwise.
SG_API AcGeMatrix3d worldToView(const AcGeVector3d& towardsEye, const AcGePoint3d& target = {},
                                double twist = 0);

// Takes the world to the pixels of a picture; what is parallel stays so.
class SG_API Projection {
  public:
    Projection() = default;
    // `viewPoint`, in the view's coordinates, comes to `pixel`.
    Projection(const AcGeMatrix3d& worldToView, double pixelsPerUnit, const AcGePoint2d& viewPoint,
               const AcGePoint2d& pixel);

    AcGePoint2d at(const AcGePoint3d& p) const {
        return {x_[0] * p.x + x_[1] * p.y + x_[2] * p.z + x_[3],
                y_[0] * p.x + y_[1] * p.y + y_[2] * p.z + y_[3]};
    }
    AcGeVector2d along(const AcGeVector3d& v) const {
        return {x_[0] * v.x + x_[1] * v.y + x_[2] * v.z, y_[0] * v.x + y_[1] * v.y + y_[2] * v.z};
    }
    double pixelsPerUnit() const { return scale_; }

  private:
    double x_[4] = {1, 0, 0, 0};
    double y_[4] = {0, -1, 0, 0};
    double scale_ = 1;
};

}  // namespace sg::render
