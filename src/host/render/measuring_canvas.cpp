#include "host/render/measuring_canvas.h"

#include <cmath>

namespace sg::render {
namespace {

// What lies beyond is taken for damage: it would make everything else a dot.
constexpr double kFarthest = 1e16;

}  // namespace

double MeasuringCanvas::shownLength(const AcGeVector3d& vector) const {
    const AcGeVector3d shown = toView_ * vector;
    return std::hypot(shown.x, shown.y);
}

void MeasuringCanvas::add(std::span<const AcGePoint3d> points) {
    for (const AcGePoint3d& point : points) {
        const AcGePoint3d seen = toView_ * point;
        if (std::abs(seen.x) < kFarthest && std::abs(seen.y) < kFarthest) box_.add(seen.x, seen.y);
    }
}

void MeasuringCanvas::line(const Look&, std::span<const AcGePoint3d> points, bool, PatternRun) {
    add(points);
}

void MeasuringCanvas::area(const Look&, std::span<const AcGePoint3d> points,
                           std::span<const uint32_t>, Rule) {
    add(points);
}

}  // namespace sg::render
