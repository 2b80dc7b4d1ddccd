#include <algorithm>
#include <cmath>

#include "companion/shape/bend.h"

namespace sg::companion {
namespace {

// The head's section where it has been carried round the bend.
Section carried(const Section& section, const Bend& bend) {
    Section other = section;
    for (AcGeVector3d* axis : {&other.frame.x, &other.frame.y, &other.frame.z})
        axis->rotateBy(bend.angle, bend.normal);
    other.center = bend.corner;
    return other;
}

bool isSameArea(const Section& a, const Section& b) {
    if (a.isRectangular != b.isRectangular) return false;
    const double tolerance = kFit * std::max(a.width, a.height);
    const auto isNear = [&](double one, double other) { return std::abs(one - other) < tolerance; };
    if (a.isRound() && b.isRound()) return isNear(a.width, b.width);
    for (const Section& seen : {b, b.turned()}) {
        const double roll = std::abs(a.frame.y.dotProduct(seen.frame.z));
        if (roll < 1e-4 && isNear(a.width, seen.width) && isNear(a.height, seen.height)) {
            return true;
        }
    }
    return false;
}

// Both sections as they stand at the corner, with corners of the one over against those of the
// other; nothing when they cannot be joined in a mitre.
std::optional<std::pair<Section, Section>> mitredSections(const Section& head, const Section& tail,
                                                          const Bend& bend) {
    const auto in = sizeInPlane(head, bend.inSide);
    const auto out = sizeInPlane(tail, bend.outSide);
    if (in && out) {
        const double tolerance = kFit * std::max(in->up, in->across);
        if (std::abs(in->up - out->up) > tolerance ||
            std::abs(in->radius - out->radius) > tolerance) {
            return std::nullopt;
        }
        PlaneSize same = *out;
        same.up = in->up;
        return std::pair(
            planeSection(bend.corner, bend.inSide, bend.normal, *in, head.isRectangular),
            planeSection(bend.corner, bend.outSide, bend.normal, same, tail.isRectangular));
    }
    const Section round = carried(head, bend);
    if (!isSameArea(round, tail)) return std::nullopt;
    return std::pair(head.movedTo(bend.corner), round);
}

// The point that the two straight pieces have in common: as far to the side as each of these is in
// its piece. All are at the corner.
AcGePoint3d mitrePoint(const Bend& bend, const AcGePoint3d& in, const AcGePoint3d& out) {
    const double a = (in - bend.corner).dotProduct(bend.inSide);
    const double b = (out - bend.corner).dotProduct(bend.outSide);
    const double up = (in - bend.corner).dotProduct(bend.normal);
    const double along = (a * std::cos(bend.angle) - b) / std::sin(bend.angle);
    return bend.corner + bend.inSide * a + bend.in * along + bend.normal * up;
}

Ring mitreRing(const Bend& bend, const Ring& in, const Ring& out) {
    Ring ring;
    for (size_t i = 0; i < ring.corners.size(); ++i) {
        const CornerArc& a = in.corners[i];
        const CornerArc& b = out.corners[i];
        ring.corners[i] = {mitrePoint(bend, a.start, b.start), mitrePoint(bend, a.middle, b.middle),
                           mitrePoint(bend, a.end, b.end)};
    }
    return ring;
}

// How far a ring reaches in a direction from a point, and at least nothing.
double reachOf(const Ring& ring, const AcGePoint3d& from, const AcGeVector3d& direction) {
    double reach = 0;
    for (const CornerArc& corner : ring.corners) {
        for (const AcGePoint3d& p : {corner.start, corner.end})
            reach = std::max(reach, (p - from).dotProduct(direction));
    }
    return reach;
}

}  // namespace

std::optional<SquareElbow> squareElbow(const Section& head, const Section& tail, double collar) {
    if (!head.isValid() || !tail.isValid() || !(collar >= 0)) return std::nullopt;
    if (head.isRectangular != tail.isRectangular) return std::nullopt;
    const auto bend = Bend::of(head.center, head.frame.x, tail.center, tail.frame.x,
                               std::max(head.width, head.height));
    if (!bend) return std::nullopt;
    const auto sections = mitredSections(head, tail, *bend);
    if (!sections) return std::nullopt;
    SquareElbow elbow;
    elbow.mitre = mitreRing(*bend, sections->first.ring(), sections->second.ring());
    elbow.head = bend->corner - bend->in * (reachOf(elbow.mitre, bend->corner, -bend->in) + collar);
    elbow.tail =
        bend->corner + bend->out * (reachOf(elbow.mitre, bend->corner, bend->out) + collar);
    elbow.headRing = sections->first.movedTo(elbow.head).ring();
    elbow.tailRing = sections->second.movedTo(elbow.tail).ring();
    return elbow;
}

bool SquareElbow::moveEnds(const AcGePoint3d& toHead, const AcGePoint3d& toTail) {
    const auto movesBack = [](Ring& ring, const Ring& mitre, const AcGeVector3d& move) {
        const double slack = kFit * ring.corners[0].middle.distanceTo(ring.corners[2].middle);
        for (size_t i = 0; i < 4; ++i) {
            CornerArc& corner = ring.corners[i];
            const AcGeVector3d ahead = mitre.corners[i].start - corner.start;
            if (!ahead.isZeroLength()) {
                const AcGeVector3d run = ahead.normal();
                if (move.crossProduct(run).length() > slack) return false;
                if (move.dotProduct(run) > slack) return false;
            }
            for (AcGePoint3d* p : {&corner.start, &corner.middle, &corner.end})
                *p += move;
        }
        return true;
    };
    Ring movedHead = headRing;
    Ring movedTail = tailRing;
    if (!movesBack(movedHead, mitre, toHead - head) ||
        !movesBack(movedTail, mitre, toTail - tail)) {
        return false;
    }
    headRing = movedHead;
    tailRing = movedTail;
    head = toHead;
    tail = toTail;
    return true;
}

Body SquareElbow::body() const {
    Patchwork body;
    body.faces.push_back(reversedCapOf(headRing));
    body.faces.push_back(capOf(tailRing));
    addWalls(body, headRing, mitre);
    addWalls(body, mitre, tailRing);
    return body;
}

}  // namespace sg::companion
