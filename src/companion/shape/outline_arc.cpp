#include "companion/shape/outline_arc.h"

#include <cmath>

namespace sg::companion {

std::optional<OutlineArc> arcOf(const Outline& outline, size_t piece) {
    const Segment& segment = outline[piece];
    if (!segment.isArc) return std::nullopt;
    const AcGePoint3d& end = outline[(piece + 1) % outline.size()].from;
    // The circle's centre, by two chords that do not lie in one line.
    const AcGeVector3d u = segment.via - segment.from;
    const AcGeVector3d v = end - segment.from;
    const AcGeVector3d normal = u.crossProduct(v);
    if (normal.lengthSqrd() == 0) return std::nullopt;
    const AcGeVector3d toCenter =
        (normal.crossProduct(u) * v.lengthSqrd() + v.crossProduct(normal) * u.lengthSqrd()) /
        (2 * normal.lengthSqrd());
    OutlineArc arc;
    arc.center = segment.from + toCenter;
    arc.start = segment.from - arc.center;
    arc.axis = normal.normal();
    arc.turn = arc.start.angleTo(end - arc.center, normal);
    if (!std::isfinite(arc.start.length()) || !std::isfinite(arc.turn)) return std::nullopt;
    return arc;
}

}  // namespace sg::companion
