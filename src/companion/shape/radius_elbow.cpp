#include <algorithm>
#include <cmath>

#include "companion/shape/bend.h"

namespace sg::companion {
namespace {

constexpr double kTightest = 0.501;  // of the radius, in parts of what the section covers

struct Arc {
    Bend bend;
    double radius = 0;
    AcGePoint3d head, tail, center;
};

std::optional<Arc> arcBetween(const Section& head, const Section& tail, double ratio) {
    if (!head.isValid() || !tail.isValid() || !(ratio > 0) || !std::isfinite(ratio)) {
        return std::nullopt;
    }
    const auto bend = Bend::of(head.center, head.frame.x, tail.center, tail.frame.x,
                               std::max(head.width, head.height));
    if (!bend) return std::nullopt;
    Arc arc{*bend, 0, {}, {}, {}};
    arc.radius = std::max(ratio * head.width, 2 * kTightest * halfReach(head, bend->inSide));
    const double tangent = arc.radius * std::tan(bend->angle / 2);
    arc.head = bend->corner - bend->in * tangent;
    arc.tail = bend->corner + bend->out * tangent;
    arc.center = arc.head + bend->inSide * arc.radius;
    return arc;
}

}  // namespace

std::optional<RadiusElbow> radiusElbow(const Section& head, const Section& tail, double ratio,
                                       double wall) {
    const auto arc = arcBetween(head, tail, ratio);
    if (!arc || !std::isfinite(wall) || wall < 0) return std::nullopt;
    const Section section = head.movedTo(arc->head);
    Revolution body{{section.outline()}, arc->center, arc->bend.normal, arc->bend.angle};
    const Section inner = section.inset(wall);
    if (wall > kLeastLength) {
        if (!inner.isValid()) return std::nullopt;
        body.outlines.push_back(inner.outline());
    }
    return RadiusElbow{arc->head, arc->tail, std::move(body)};
}

std::optional<RadiusElbow> trayElbow(const Section& head, const Section& tail, double ratio) {
    const auto arc = arcBetween(head, tail, ratio);
    if (!arc) return std::nullopt;
    const auto size = sizeInPlane(head, arc->bend.inSide);
    if (!size) return std::nullopt;
    const Bend& bend = arc->bend;
    const double half = size->across / 2;
    const AcGeVector3d down = bend.normal * (-size->up / 2);
    const AcGeVector3d middle = (bend.inSide + bend.outSide).normal();
    const double outward = (arc->radius + half) / std::cos(bend.angle / 2);
    const Outline plan = {{arc->tail + bend.outSide * half + down, true,
                           arc->center - middle * (arc->radius - half) + down},
                          {arc->head + bend.inSide * half + down, false, {}},
                          {arc->head - bend.inSide * half + down, false, {}},
                          {arc->center - middle * outward + down, false, {}},
                          {arc->tail - bend.outSide * half + down, false, {}}};
    return RadiusElbow{arc->head, arc->tail, Extrusion{{plan}, bend.normal * size->up}};
}

}  // namespace sg::companion
