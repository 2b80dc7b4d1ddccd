#pragma once

#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

// An unbounded plane through a point. Its axes are those that the arbitrary axis algorithm gives
// for the normal.
class AcGePlane {
  public:
    AcGePlane() = default;  // the XY plane
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal)
        : origin_(origin), normal_(normal.normal()) {}

    const AcGePoint3d& pointOnPlane() const { return origin_; }
    const AcGeVector3d& normal() const { return normal_; }

    // Above the plane, on the side of its normal, is positive.
    double signedDistanceTo(const AcGePoint3d& point) const {
        return (point - origin_).dotProduct(normal_);
    }
    // Seen along the normal.
    AcGePoint3d orthoProject(const AcGePoint3d& point) const {
        return point - normal_ * signedDistanceTo(point);
    }

  private:
    AcGePoint3d origin_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
};
