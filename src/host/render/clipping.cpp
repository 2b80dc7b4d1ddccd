#include "host/render/clipping.h"

#include <algorithm>
#include <limits>

namespace sg::render {
namespace {

// Narrows the shares to where start + share * step is at most the limit.
bool narrow(double start, double step, double limit, double& from, double& to) {
    if (step == 0) return start <= limit;
    const double share = (limit - start) / step;
    if (step > 0) {
        to = std::min(to, share);
    } else {
        from = std::max(from, share);
    }
    return from <= to;
}

AcGePoint2d between(const AcGePoint2d& a, const AcGePoint2d& b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

bool narrowTo(const PixelBox& box, const AcGePoint2d& a, const AcGePoint2d& b, double& from,
              double& to) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    return narrow(a.x, dx, box.right, from, to) && narrow(-a.x, -dx, -box.left, from, to) &&
           narrow(a.y, dy, box.bottom, from, to) && narrow(-a.y, -dy, -box.top, from, to);
}

// What of a polygon is where `depth`, a linear function of a point, is not below 0.
template <class Depth>
std::vector<AcGePoint2d> keep(const std::vector<AcGePoint2d>& polygon, const Depth& depth) {
    std::vector<AcGePoint2d> kept;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const AcGePoint2d& a = polygon[i];
        const AcGePoint2d& b = polygon[(i + 1) % polygon.size()];
        const double ofA = depth(a);
        const double ofB = depth(b);
        if (ofA >= 0) kept.push_back(a);
        if ((ofA < 0) != (ofB < 0)) kept.push_back(between(a, b, ofA / (ofA - ofB)));
    }
    return kept;
}

}  // namespace

bool PixelBox::clipLine(const AcGePoint2d& a, const AcGePoint2d& b, double& from,
                        double& to) const {
    from = 0;
    to = 1;
    return narrowTo(*this, a, b, from, to);
}

bool PixelBox::clipEndless(const AcGePoint2d& base, const AcGePoint2d& next, bool isBoth,
                           double& from, double& to) const {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    from = isBoth ? -kEndless : 0;
    to = kEndless;
    return narrowTo(*this, base, next, from, to) && to < kEndless;
}

std::vector<AcGePoint2d> PixelBox::clipArea(std::span<const AcGePoint2d> polygon) const {
    std::vector<AcGePoint2d> kept(polygon.begin(), polygon.end());
    kept = keep(kept, [&](const AcGePoint2d& p) { return p.x - left; });
    kept = keep(kept, [&](const AcGePoint2d& p) { return right - p.x; });
    kept = keep(kept, [&](const AcGePoint2d& p) { return p.y - top; });
    return keep(kept, [&](const AcGePoint2d& p) { return bottom - p.y; });
}

PixelBox boxOf(std::span<const AcGePoint2d> points) {
    PixelBox box{1e300, 1e300, -1e300, -1e300};
    for (const AcGePoint2d& p : points) {
        box = {std::min(box.left, p.x), std::min(box.top, p.y), std::max(box.right, p.x),
               std::max(box.bottom, p.y)};
    }
    return box;
}

}  // namespace sg::render
