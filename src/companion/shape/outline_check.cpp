#include "companion/shape/outline_check.h"

#include <cmath>

#include "companion/shape/section.h"

namespace sg::companion {
namespace {

double distanceToPiece(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b) {
    const AcGeVector3d along = b - a;
    const double square = along.lengthSqrd();
    double share = square > 0 ? (p - a).dotProduct(along) / square : 0;
    share = share < 0 ? 0 : share > 1 ? 1 : share;
    return p.distanceTo(a + along * share);
}

bool touch(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, const AcGePoint3d& d,
           const AcGeVector3d& normal) {
    const auto side = [&](const AcGePoint3d& p, const AcGePoint3d& q, const AcGePoint3d& r) {
        return (q - p).crossProduct(r - p).dotProduct(normal);
    };
    const bool cross = side(a, b, c) * side(a, b, d) < 0 && side(c, d, a) * side(c, d, b) < 0;
    return cross || distanceToPiece(a, c, d) <= kLeastLength ||
           distanceToPiece(b, c, d) <= kLeastLength || distanceToPiece(c, a, b) <= kLeastLength ||
           distanceToPiece(d, a, b) <= kLeastLength;
}

// Whether the piece behind a point runs back over the one ahead of it.
bool turnsBack(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
    return (a - b).angleTo(c - b) < 1e-7;
}

}  // namespace

bool isSimple(std::span<const AcGePoint3d> points, const AcGeVector3d& normal) {
    const size_t count = points.size();
    for (size_t i = 0; i < count; ++i) {
        const AcGePoint3d& from = points[i];
        const AcGePoint3d& to = points[(i + 1) % count];
        if (from.distanceTo(to) <= kLeastLength) return false;
        if (turnsBack(from, to, points[(i + 2) % count])) return false;
        for (size_t k = i + 2; k < count; ++k) {
            if ((k + 1) % count == i) continue;
            if (touch(from, to, points[k], points[(k + 1) % count], normal)) return false;
        }
    }
    return count >= 3;
}

}  // namespace sg::companion
