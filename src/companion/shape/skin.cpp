#include "companion/shape/skin.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "companion/shape/outline_check.h"
#include "companion/shape/section.h"

namespace sg::companion {
namespace {

constexpr size_t kMostPoints = 2000;
constexpr double kFlat = 1e-7;  // what points may be off their plane, in parts of their spread

// Its length is twice the area that the points enclose.
AcGeVector3d areaVector(std::span<const AcGePoint3d> points) {
    AcGeVector3d sum;
    for (size_t i = 1; i + 1 < points.size(); ++i)
        sum += (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
    return sum;
}

double spreadOf(std::span<const AcGePoint3d> points) {
    double spread = 0;
    for (const AcGePoint3d& p : points)
        spread = std::max(spread, p.distanceTo(points[0]));
    return spread;
}

bool isPlane(std::span<const AcGePoint3d> points, const AcGeVector3d& normal, double spread) {
    return std::all_of(points.begin(), points.end(), [&](const AcGePoint3d& p) {
        return std::abs((p - points[0]).dotProduct(normal)) <= kFlat * spread;
    });
}

using Triangle = std::array<size_t, 3>;

// Between the points that go one way and those that come back.
std::vector<Triangle> stripOf(size_t count) {
    std::vector<Triangle> strip;
    size_t low = 0;
    size_t high = count - 1;
    while (high - low >= 2) {
        strip.push_back({low, low + 1, high});
        if (high - low >= 3) strip.push_back({low + 1, high - 1, high});
        ++low;
        --high;
    }
    return strip;
}

// The points moved off the sheet so that each face moves by the thickness.
std::vector<AcGePoint3d> offset(std::span<const AcGePoint3d> points,
                                const std::vector<Triangle>& strip, double thickness) {
    std::vector<AcGeVector3d> normals(points.size());
    std::vector<AcGeVector3d> faces;
    for (const Triangle& t : strip) {
        const AcGeVector3d normal =
            (points[t[1]] - points[t[0]]).crossProduct(points[t[2]] - points[t[0]]).normal();
        faces.push_back(normal);
        // By its angle there, so that it does not matter how a panel is cut into triangles.
        for (size_t i = 0; i < 3; ++i) {
            const AcGePoint3d& at = points[t[i]];
            normals[t[i]] +=
                normal * (points[t[(i + 1) % 3]] - at).angleTo(points[t[(i + 2) % 3]] - at);
        }
    }
    std::vector<double> least(points.size(), 1);
    for (AcGeVector3d& normal : normals)
        normal.normalize();
    for (size_t i = 0; i < strip.size(); ++i) {
        for (const size_t corner : strip[i])
            least[corner] = std::min(least[corner], faces[i].dotProduct(normals[corner]));
    }
    std::vector<AcGePoint3d> moved;
    for (size_t i = 0; i < points.size(); ++i)
        moved.push_back(points[i] + normals[i] * (thickness / std::max(least[i], 0.25)));
    return moved;
}

std::optional<Body> bentSheet(std::span<const AcGePoint3d> points, double thickness) {
    const std::vector<Triangle> strip = stripOf(points.size());
    const double spread = spreadOf(points);
    for (const Triangle& t : strip) {
        const AcGeVector3d area =
            (points[t[1]] - points[t[0]]).crossProduct(points[t[2]] - points[t[0]]);
        if (area.length() <= kFlat * spread * spread) return std::nullopt;
    }
    const std::vector<AcGePoint3d> far = offset(points, strip, thickness);
    Patchwork body;
    const auto addFace = [&](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
        body.faces.push_back({Curve::line(a, b), Curve::line(b, c), Curve::line(c, a)});
    };
    const bool isAbove = thickness > 0;
    for (const Triangle& t : strip) {
        addFace(points[t[0]], points[t[isAbove ? 2 : 1]], points[t[isAbove ? 1 : 2]]);
        addFace(far[t[0]], far[t[isAbove ? 1 : 2]], far[t[isAbove ? 2 : 1]]);
    }
    for (size_t i = 0; i < points.size(); ++i) {
        const size_t next = (i + 1) % points.size();
        const size_t from = isAbove ? i : next;
        const size_t to = isAbove ? next : i;
        addFace(points[from], points[to], far[to]);
        addFace(points[from], far[to], far[from]);
    }
    return body;
}

}  // namespace

std::optional<Body> skinBody(std::span<const AcGePoint3d> given, double thickness) {
    if (!std::isfinite(thickness) || std::abs(thickness) <= kLeastLength) return std::nullopt;
    if (!std::all_of(given.begin(), given.end(),
                     [](const AcGePoint3d& p) { return isFinite(p); })) {
        return std::nullopt;
    }
    std::vector<AcGePoint3d> points(given.begin(), given.end());
    if (points.size() > 1 && points.front().distanceTo(points.back()) <= kLeastLength) {
        points.pop_back();
    }
    if (points.size() < 3 || points.size() > kMostPoints) return std::nullopt;
    const double spread = spreadOf(points);
    const AcGeVector3d area = areaVector(points);
    if (area.length() <= kFlat * spread * spread) return std::nullopt;
    const AcGeVector3d normal = area.normal();
    if (!isPlane(points, normal, spread)) return bentSheet(points, thickness);
    if (!isSimple(points, normal)) return std::nullopt;
    Outline outline;
    for (const AcGePoint3d& p : points)
        outline.push_back({p, false, {}});
    return Extrusion{{std::move(outline)}, normal * thickness};
}

}  // namespace sg::companion
