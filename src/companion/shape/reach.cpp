#include "companion/shape/reach.h"

#include <cmath>
#include <numbers>

#include "companion/shape/outline_arc.h"

namespace sg::companion {
namespace {

constexpr int kArcParts = 32;  // of a quarter, or of an outline's arc
constexpr double kTurnPart = std::numbers::pi / 128;

// A place of the curve, from 0 to 1.
AcGePoint3d placeOn(const Curve& curve, double at) {
    const double a = (1 - at) * (1 - at);
    const double b = std::numbers::sqrt2 * at * (1 - at);
    const double c = at * at;
    const AcGeVector3d sum = curve.poles[0].asVector() * a + curve.poles[1].asVector() * b +
                             curve.poles[2].asVector() * c;
    return AcGePoint3d::kOrigin + sum / (a + b + c);
}

// Points of an outline: its corners, and places along its arcs.
std::vector<AcGePoint3d> pointsOf(const Outline& outline) {
    std::vector<AcGePoint3d> points;
    for (size_t i = 0; i < outline.size(); ++i) {
        points.push_back(outline[i].from);
        const auto arc = arcOf(outline, i);
        for (int part = 1; arc && part < kArcParts; ++part)
            points.push_back(arc->at(static_cast<double>(part) / kArcParts));
    }
    return points;
}

class Measurer {
  public:
    explicit Measurer(AcDbExtents& extents) : box_(extents) {}

    void operator()(const Extrusion& body) const {
        for (const AcGePoint3d& p : pointsOf(body.outlines.front())) {
            box_.addPoint(p);
            box_.addPoint(p + body.along);
        }
    }
    void operator()(const Revolution& body) const {
        const int parts = static_cast<int>(std::ceil(std::abs(body.angle) / kTurnPart));
        for (const AcGePoint3d& p : pointsOf(body.outlines.front())) {
            for (int part = 0; part <= parts; ++part) {
                AcGePoint3d turned = p;
                box_.addPoint(turned.rotateBy(body.angle * part / parts, body.axis, body.center));
            }
        }
    }
    void operator()(const Patchwork& body) const {
        for (const PlaneFace& face : body.faces) {
            for (const Curve& curve : face)
                add(curve);
        }
        for (const Patch& patch : body.patches) {
            add(patch.lower);
            add(patch.upper);
        }
    }

  private:
    void add(const Curve& curve) const {
        box_.addPoint(curve.start());
        box_.addPoint(curve.end());
        for (int part = 1; curve.isArc && part < kArcParts; ++part)
            box_.addPoint(placeOn(curve, static_cast<double>(part) / kArcParts));
    }

    AcDbExtents& box_;
};

}  // namespace

std::optional<AcDbExtents> reachOf(const Steps& steps) {
    AcDbExtents box;
    for (const Step& step : steps) {
        const auto* const added = std::get_if<AddBody>(&step.action);
        if (added == nullptr) return std::nullopt;
        std::visit(Measurer(box), added->body);
    }
    if (box.isEmpty()) return std::nullopt;
    return box;
}

}  // namespace sg::companion
