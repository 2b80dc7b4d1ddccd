#include "companion/shape/bend.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sg::companion {
namespace {

constexpr double kSmallestTurn = std::numbers::pi / 180;
constexpr double kLargestTurn = 160 * std::numbers::pi / 180;
constexpr double kAligned = 1e-4;

}  // namespace

std::optional<AcGePoint3d> crossingOf(const AcGePoint3d& a, const AcGeVector3d& along,
                                      const AcGePoint3d& b, const AcGeVector3d& other, double gap) {
    const AcGeVector3d normal = along.crossProduct(other);
    const double square = normal.lengthSqrd();
    if (!(square > kAligned * kAligned)) return std::nullopt;
    const AcGeVector3d between = b - a;
    const AcGePoint3d onA = a + along * (between.crossProduct(other).dotProduct(normal) / square);
    const AcGePoint3d onB = b + other * (between.crossProduct(along).dotProduct(normal) / square);
    if (!(onA.distanceTo(onB) <= gap)) return std::nullopt;
    return onA + (onB - onA) * 0.5;
}

std::optional<Bend> Bend::of(const AcGePoint3d& head, const AcGeVector3d& in,
                             const AcGePoint3d& tail, const AcGeVector3d& out, double size) {
    Bend bend;
    bend.angle = in.angleTo(out);
    if (bend.angle < kSmallestTurn || bend.angle > kLargestTurn) return std::nullopt;
    const auto corner = crossingOf(head, in, tail, out, kFit * size);
    if (!corner) return std::nullopt;
    bend.corner = *corner;
    bend.in = in;
    bend.out = out;
    bend.normal = in.crossProduct(out).normal();
    bend.inSide = bend.normal.crossProduct(in);
    bend.outSide = bend.normal.crossProduct(out);
    return bend;
}

std::optional<PlaneSize> sizeInPlane(const Section& section, const AcGeVector3d& side) {
    const double r = section.cornerRadius();
    if (section.isRound()) return PlaneSize{section.width, section.height, r};
    if (std::abs(section.frame.z.dotProduct(side)) < kAligned) {
        return PlaneSize{section.width, section.height, r};
    }
    if (std::abs(section.frame.y.dotProduct(side)) < kAligned) {
        return PlaneSize{section.height, section.width, r};
    }
    return std::nullopt;
}

double halfReach(const Section& section, const AcGeVector3d& direction) {
    const double r = section.cornerRadius();
    return (section.width / 2 - r) * std::abs(section.frame.y.dotProduct(direction)) +
           (section.height / 2 - r) * std::abs(section.frame.z.dotProduct(direction)) + r;
}

Section planeSection(const AcGePoint3d& center, const AcGeVector3d& side,
                     const AcGeVector3d& normal, const PlaneSize& size, bool isRectangular) {
    return {center, {side.crossProduct(normal), side, normal}, size.across, size.up, isRectangular};
}

}  // namespace sg::companion
