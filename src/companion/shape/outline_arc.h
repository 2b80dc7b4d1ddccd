#pragma once

#include <optional>

#include "companion/shape/body.h"

namespace sg::companion {

// The circle that a piece of an outline goes along.
struct OutlineArc {
    AcGePoint3d center;
    AcGeVector3d start;  // from the centre to where it begins
    AcGeVector3d axis;   // of length 1; seen against it the arc runs counter-clockwise
    double turn = 0;     // radians, above 0

    AcGePoint3d at(double part) const {  // 0 is the start, 1 the end
        AcGeVector3d radius = start;
        return center + radius.rotateBy(turn * part, axis);
    }
    AcGeVector3d directionAt(double part) const {
        return axis.crossProduct(at(part) - center).normal();
    }
};

// Nothing for a straight piece, and for three points in one line, or almost so.
std::optional<OutlineArc> arcOf(const Outline& outline, size_t piece);

}  // namespace sg::companion
