#include "host/model/core/measuring_draw.h"

#include <cmath>
#include <numbers>
#include <vector>

#include "host/model/core/plain_traits.h"
#include "host/text/line.h"
#include "platform/gi/drawable.h"

namespace sg::model {
namespace {

constexpr int kDeepestNesting = 64;
constexpr int kMostLookedAt = 100'000;

// The angles of a sweep at which a circle reaches furthest along each axis of the world, and its
// ends.
std::vector<double> extremeAngles(const AcGeVector3d& xAxis, const AcGeVector3d& yAxis,
                                  double sweep) {
    constexpr double kTurn = 2 * std::numbers::pi;
    std::vector<double> angles{0, sweep};
    const double lowest = std::min(0.0, sweep);
    const double highest = std::max(0.0, sweep);
    for (unsigned int axis = 0; axis < 3; ++axis) {
        double angle = std::atan2(yAxis[axis], xAxis[axis]) - 2 * kTurn;
        for (; angle <= highest; angle += std::numbers::pi) {
            if (angle >= lowest) angles.push_back(angle);
        }
    }
    return angles;
}

}  // namespace

class MeasuringDraw::Geometry final : public AcGiGeometry {
  public:
    explicit Geometry(MeasuringDraw& draw) : draw_(draw) {}

    AcDbExtents extents;
    int lookedAt = 0;

    AcGeMatrix3d getModelToWorldTransform() const override {
        return transforms_.empty() ? AcGeMatrix3d() : transforms_.back();
    }
    bool pushModelTransform(const AcGeMatrix3d& transform) override {
        transforms_.push_back(getModelToWorldTransform() * transform);
        return false;
    }
    bool popModelTransform() override {
        if (!transforms_.empty()) transforms_.pop_back();
        return false;
    }

    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        return arc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType type) override {
        if (type == kAcGiArcSector) add(center);
        return arc(center, radius, normal, start, sweep);
    }
    bool polyline(uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  int64_t) override {
        const double thickness = draw_.subEntityTraits().thickness();
        for (uint32_t i = 0; i < count; ++i) {
            add(points[i]);
            if (thickness != 0 && normal != nullptr) add(points[i] + *normal * thickness);
        }
        return false;
    }
    bool polygon(uint32_t count, const AcGePoint3d* points) override {
        return addAll(count, points);
    }
    bool polyPolygon(uint32_t loops, const uint32_t* counts, const AcGePoint3d* points,
                     const AcGeVector3d&) override {
        uint32_t total = 0;
        for (uint32_t i = 0; i < loops; ++i)
            total += counts[i];
        return addAll(total, points);
    }
    bool shell(uint32_t points, const AcGePoint3d* vertices, uint32_t, const int32_t*) override {
        return addAll(points, vertices);
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
              const AcGeVector3d& direction, const std::wstring& line,
              const AcGiTextStyle& style) override {
        const text::LineBox box = text::measureLine(line, style);
        if (box.isEmpty()) return false;
        const AcGeVector3d along = direction.normal();
        const AcGeVector3d up = normal.crossProduct(along).normal();
        for (const double x : {box.left, box.right}) {
            for (const double y : {box.bottom, box.top})
                add(position + along * x + up * y);
        }
        return false;
    }
    bool ray(const AcGePoint3d&, const AcGePoint3d&) override { return false; }
    bool xline(const AcGePoint3d&, const AcGePoint3d&) override { return false; }
    bool draw(AcGiDrawable* drawable) override {
        if (drawable == nullptr || depth_ == kDeepestNesting) return false;
        if (lookedAt < kMostLookedAt) ++lookedAt;
        ++depth_;
        const double thickness = draw_.subEntityTraits().thickness();
        draw_.subEntityTraits().setThickness(0);
        drawable->worldDraw(&draw_);
        draw_.subEntityTraits().setThickness(thickness);
        --depth_;
        return false;
    }

  private:
    void add(const AcGePoint3d& point) {
        extents.addPoint(transforms_.empty() ? point : transforms_.back() * point);
    }
    bool addAll(uint32_t count, const AcGePoint3d* points) {
        for (uint32_t i = 0; i < count; ++i)
            add(points[i]);
        return false;
    }
    bool arc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
             const AcGeVector3d& start, double sweep) {
        const AcGeVector3d x = start.normal() * radius;
        const AcGeVector3d y = normal.normal().crossProduct(x);
        const AcGeVector3d lift = normal.normal() * draw_.subEntityTraits().thickness();
        const AcGeMatrix3d matrix = getModelToWorldTransform();
        for (const double angle : extremeAngles(matrix * x, matrix * y, sweep)) {
            const AcGePoint3d point = center + x * std::cos(angle) + y * std::sin(angle);
            add(point);
            add(point + lift);
        }
        return false;
    }

    MeasuringDraw& draw_;
    std::vector<AcGeMatrix3d> transforms_;
    int depth_ = 0;
};

MeasuringDraw::MeasuringDraw() : MeasuringDraw(std::make_shared<BlockBoxes>()) {
    geometry_->lookedAt = 0;
}
MeasuringDraw::MeasuringDraw(std::shared_ptr<BlockBoxes> boxes)
    : geometry_(std::make_unique<Geometry>(*this)),
      traits_(std::make_unique<PlainTraits>()),
      boxes_(std::move(boxes)) {
    geometry_->lookedAt = kMostLookedAt;
}
MeasuringDraw::~MeasuringDraw() = default;

bool MeasuringDraw::isInHaste() const {
    return geometry_->lookedAt == kMostLookedAt;
}

void MeasuringDraw::addBox(const AcDbExtents& box, const AcGeMatrix3d& transform) {
    AcDbExtents placed = box;
    placed.transformBy(geometry_->getModelToWorldTransform() * transform);
    geometry_->extents.addExt(placed);
}

const AcDbExtents& MeasuringDraw::extents() const {
    return geometry_->extents;
}

// Fine enough for boxes of drawings of any size in use.
double MeasuringDraw::deviation(const AcGePoint3d&) const {
    return 1e-3;
}

AcGiGeometry& MeasuringDraw::geometry() const {
    return *geometry_;
}
AcGiSubEntityTraits& MeasuringDraw::subEntityTraits() const {
    return *traits_;
}

}  // namespace sg::model
