#pragma once

#include <algorithm>

#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"

// A box along the axes, in drawing units. A new one is empty: its minimum is above its maximum.
class AcDbExtents {
  public:
    AcDbExtents() = default;
    AcDbExtents(const AcGePoint3d& minimum, const AcGePoint3d& maximum)
        : min_(minimum), max_(maximum) {}

    const AcGePoint3d& minPoint() const { return min_; }
    const AcGePoint3d& maxPoint() const { return max_; }
    bool isEmpty() const { return min_.x > max_.x; }

    void addPoint(const AcGePoint3d& point) {
        min_ = {std::min(min_.x, point.x), std::min(min_.y, point.y), std::min(min_.z, point.z)};
        max_ = {std::max(max_.x, point.x), std::max(max_.y, point.y), std::max(max_.z, point.z)};
    }
    void addExt(const AcDbExtents& other) {
        if (other.isEmpty()) return;
        addPoint(other.min_);
        addPoint(other.max_);
    }
    // The box along the axes around the transformed corners.
    void transformBy(const AcGeMatrix3d& matrix) {
        if (isEmpty()) return;
        AcDbExtents result;
        for (int corner = 0; corner < 8; ++corner) {
            result.addPoint(matrix * AcGePoint3d(corner & 1 ? max_.x : min_.x,
                                                 corner & 2 ? max_.y : min_.y,
                                                 corner & 4 ? max_.z : min_.z));
        }
        *this = result;
    }

  private:
    AcGePoint3d min_{1e20, 1e20, 1e20};
    AcGePoint3d max_{-1e20, -1e20, -1e20};
};
