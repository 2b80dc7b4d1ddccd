#include "companion/shape/transition.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sg::companion {
namespace {

constexpr double kAligned = 1e-9;

// Seen so that the run goes on in the direction `along`.
Section facing(const Section& section, const AcGeVector3d& along) {
    Section seen = section;
    if (section.frame.x.dotProduct(along) < 0) {
        seen.frame.x = -section.frame.x;
        seen.frame.y = -section.frame.y;
    }
    return seen;
}

// `direction` as it is behind the smallest turn that takes one run's direction to the other's.
AcGeVector3d carriedOver(const AcGeVector3d& direction, const AcGeVector3d& from,
                         const AcGeVector3d& to) {
    const AcGeVector3d axis = from.crossProduct(to);
    if (axis.length() < kAligned) return direction;
    AcGeVector3d carried = direction;
    return carried.rotateBy(from.angleTo(to), axis);
}

double rollBetween(const Section& from, const Section& to) {
    const AcGeVector3d y = carriedOver(from.frame.y, from.frame.x, to.frame.x);
    return std::atan2(to.frame.z.dotProduct(y), to.frame.y.dotProduct(y));
}

// Turned so that its corners are the nearest to those of `from`.
Section withNearestCorners(const Section& from, Section to) {
    if (from.isRound() || to.isRound()) return to;
    const double roll = rollBetween(from, to);
    const auto quarters = static_cast<int>(std::lround(roll / (std::numbers::pi / 2)));
    for (int i = 0; i < (quarters + 4) % 4; ++i)
        to = to.turned();
    return to;
}

// A round section, rolled as the other is.
Section rolledAs(const Section& round, const Section& other) {
    Section rolled = round;
    rolled.frame.y = carriedOver(other.frame.y, other.frame.x, round.frame.x);
    rolled.frame.y -= round.frame.x * rolled.frame.y.dotProduct(round.frame.x);
    rolled.frame.y.normalize();
    rolled.frame.z = round.frame.x.crossProduct(rolled.frame.y);
    return rolled;
}

// Whether all of a section lies beyond a plane.
bool liesBeyond(const Section& section, const AcGePoint3d& plane, const AcGeVector3d& normal) {
    const Ring ring = section.ring();
    return std::all_of(ring.corners.begin(), ring.corners.end(), [&](const CornerArc& corner) {
        return (corner.middle - plane).dotProduct(normal) > kLeastLength;
    });
}

bool isSame(const AcGeVector3d& a, const AcGeVector3d& b) {
    return (a - b).length() < kAligned;
}

bool isPrism(const Section& head, const Section& tail) {
    return head.isRectangular == tail.isRectangular && head.width == tail.width &&
           head.height == tail.height && isSame(head.frame.x, tail.frame.x) &&
           isSame(head.frame.y, tail.frame.y);
}

bool isCone(const Section& head, const Section& tail) {
    const AcGeVector3d run = tail.center - head.center;
    return head.isRound() && tail.isRound() && isSame(head.frame.x, tail.frame.x) &&
           isSame(run.normal(), head.frame.x);
}

Revolution coneBody(const Section& head, const Section& tail) {
    const Outline side = {{head.center, false, {}},
                          {head.at(head.width / 2, 0), false, {}},
                          {tail.center + head.frame.y * (tail.width / 2), false, {}},
                          {tail.center, false, {}}};
    return {{side}, head.center, head.frame.x, 2 * std::numbers::pi};
}

}  // namespace

std::optional<Body> transitionBody(const Section& givenHead, const Section& givenTail) {
    if (!givenHead.isValid() || !givenTail.isValid()) return std::nullopt;
    const AcGeVector3d along = givenTail.center - givenHead.center;
    Section head = facing(givenHead, along);
    Section tail = withNearestCorners(head, facing(givenTail, along));
    if (!liesBeyond(tail, head.center, head.frame.x) ||
        !liesBeyond(head, tail.center, -tail.frame.x)) {
        return std::nullopt;
    }
    if (tail.isRound()) {
        tail = rolledAs(tail, head);
    } else if (head.isRound()) {
        head = rolledAs(head, tail);
    }
    if (isPrism(head, tail)) return Extrusion{{head.outline()}, along};
    if (isCone(head, tail)) return coneBody(head, tail);
    Patchwork body;
    body.faces.push_back(reversedCapOf(head.ring()));
    body.faces.push_back(capOf(tail.ring()));
    addWalls(body, head.ring(), tail.ring());
    return body;
}

}  // namespace sg::companion
