#pragma once

#include <span>
#include <vector>

#include "platform/ge/point2d.h"

namespace sg::render {

// A rectangle of pixels, and what of lines and areas is in it.
struct PixelBox {
    double left = 0, top = 0, right = 0, bottom = 0;

    bool contains(const AcGePoint2d& p) const {
        return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom;
    }
    PixelBox grown(double by) const { return {left - by, top - by, right + by, bottom + by}; }

    // The part of the line between these shares of the way from `a` to `b`; false when nothing of
    // it is inside.
    bool clipLine(const AcGePoint2d& a, const AcGePoint2d& b, double& from, double& to) const;
    // The same for a line that goes on without an end, forward only or both ways.
    bool clipEndless(const AcGePoint2d& base, const AcGePoint2d& next, bool isBoth, double& from,
                     double& to) const;
    // The part of a closed polygon; edges along the rectangle's may be added.
    std::vector<AcGePoint2d> clipArea(std::span<const AcGePoint2d> polygon) const;
};

PixelBox boxOf(std::span<const AcGePoint2d> points);

}  // namespace sg::render
