#include "companion/shape/section.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sg::companion {
namespace {

constexpr double kFrameTolerance = 1e-6;
constexpr double kNowhere = 1e-9;  // points that are nearer are one, in parts of the coordinates

bool isOne(const AcGePoint3d& a, const AcGePoint3d& b) {
    const double size = 1 + std::max({std::abs(a.x), std::abs(a.y), std::abs(a.z)});
    return a.distanceTo(b) <= kNowhere * size;
}

bool isPoint(const Curve& curve) {
    return isOne(curve.start(), curve.end());
}

bool isPlane(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
             const AcGePoint3d& d) {
    const AcGeVector3d normal = (c - a).crossProduct(d - b);
    const double size = normal.length();
    if (size == 0) return false;
    const double reach = std::max((c - a).length(), (d - b).length());
    return std::abs(normal.dotProduct(b - a)) / size <= 1e-9 * (1 + reach);
}

// The face between two straight curves.
void addFlat(Patchwork& body, const Curve& lower, const Curve& upper) {
    const bool isLowerPoint = isPoint(lower);
    const bool isUpperPoint = isPoint(upper);
    if (isLowerPoint && isUpperPoint) return;
    if (!isLowerPoint && !isUpperPoint &&
        !isPlane(lower.start(), lower.end(), upper.end(), upper.start())) {
        body.patches.push_back({lower, upper});
        return;
    }
    PlaneFace face;
    if (!isLowerPoint) face.push_back(lower);
    face.push_back(Curve::line(lower.end(), upper.end()));
    if (!isUpperPoint) face.push_back(upper.reversed());
    face.push_back(Curve::line(upper.start(), lower.start()));
    body.faces.push_back(std::move(face));
}

Curve curveOf(const CornerArc& corner) {
    return Curve::arc(corner.start, corner.middle, corner.end);
}

}  // namespace

bool isFinite(const AcGeVector3d& vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

bool isFinite(const AcGePoint3d& point) {
    return isFinite(point.asVector());
}

bool Frame::isOrthonormal() const {
    const auto isUnit = [](const AcGeVector3d& v) {
        return isFinite(v) && std::abs(v.length() - 1) < kFrameTolerance;
    };
    return isUnit(x) && isUnit(y) && isUnit(z) && std::abs(x.dotProduct(y)) < kFrameTolerance &&
           std::abs(y.dotProduct(z)) < kFrameTolerance &&
           std::abs(z.dotProduct(x)) < kFrameTolerance;
}

// ---- Sections -----------------------------------------------------------------------------------

bool Section::isValid() const {
    constexpr double kLargest = 1e9;
    return isFinite(center) && std::isfinite(width) && std::isfinite(height) &&
           width > kLeastLength && height > kLeastLength && width < kLargest && height < kLargest &&
           frame.isOrthonormal();
}

double Section::area() const {
    const double r = cornerRadius();
    return width * height - (4 - std::numbers::pi) * r * r;
}

Section Section::turned() const {
    Section other = *this;
    other.frame.y = frame.z;
    other.frame.z = -frame.y;
    std::swap(other.width, other.height);
    return other;
}

Section Section::movedTo(const AcGePoint3d& place) const {
    Section other = *this;
    other.center = place;
    return other;
}

Section Section::inset(double wall) const {
    Section other = *this;
    other.width = width - 2 * wall;
    other.height = height - 2 * wall;
    return other;
}

Ring Section::ring() const {
    const double r = cornerRadius();
    const double y = width / 2;
    const double z = height / 2;
    return {{{{at(y, z - r), at(y, z), at(y - r, z)},
              {at(r - y, z), at(-y, z), at(-y, z - r)},
              {at(-y, r - z), at(-y, -z), at(r - y, -z)},
              {at(y - r, -z), at(y, -z), at(y, r - z)}}}};
}

Outline Section::outline() const {
    const Ring corners = ring();
    const double r = cornerRadius();
    const double back = r * (1 - std::numbers::sqrt2 / 2);  // of the arc's middle from the corner
    const double y = width / 2 - back;
    const double z = height / 2 - back;
    const AcGePoint3d middles[] = {at(y, z), at(-y, z), at(-y, -z), at(y, -z)};
    Outline outline;
    for (size_t i = 0; i < 4; ++i) {
        const CornerArc& corner = corners.corners[i];
        if (r > 0) outline.push_back({corner.start, true, middles[i]});
        if (!isOne(corner.end, corners.corners[(i + 1) % 4].start)) {
            outline.push_back({corner.end, false, {}});
        }
    }
    return outline;
}

// ---- Faces --------------------------------------------------------------------------------------

PlaneFace capOf(const Ring& ring) {
    PlaneFace face;
    for (size_t i = 0; i < 4; ++i) {
        const CornerArc& corner = ring.corners[i];
        const AcGePoint3d& next = ring.corners[(i + 1) % 4].start;
        if (!isOne(corner.start, corner.end)) face.push_back(curveOf(corner));
        if (!isOne(corner.end, next)) face.push_back(Curve::line(corner.end, next));
    }
    return face;
}

PlaneFace reversedCapOf(const Ring& ring) {
    PlaneFace face = capOf(ring);
    std::reverse(face.begin(), face.end());
    for (Curve& curve : face)
        curve = curve.reversed();
    return face;
}

void addWalls(Patchwork& body, const Ring& from, const Ring& to) {
    for (size_t i = 0; i < 4; ++i) {
        const size_t next = (i + 1) % 4;
        const Curve lower = curveOf(from.corners[i]);
        const Curve upper = curveOf(to.corners[i]);
        if (!isPoint(lower) || !isPoint(upper)) body.patches.push_back({lower, upper});
        addFlat(body, Curve::line(from.corners[i].end, from.corners[next].start),
                Curve::line(to.corners[i].end, to.corners[next].start));
    }
}

}  // namespace sg::companion
