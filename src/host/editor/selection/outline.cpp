#include "host/editor/selection/outline.h"

#include <cmath>
#include <numbers>

#include "host/model/core/object_access.h"
#include "host/model/core/plain_traits.h"
#include "host/model/curves/curve_access.h"
#include "host/model/curves/ellipse.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/ray.h"
#include "host/model/curves/spline.h"
#include "host/model/curves/xline.h"
#include "host/text/line.h"
#include "platform/db/arc.h"
#include "platform/db/circle.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "platform/db/polyline.h"
#include "platform/db/polyline_2d.h"
#include "platform/gi/draw.h"

namespace sg {
namespace {

using model::CurveAccess;
using model::CurveShape;
using model::Piece;

constexpr int kDeepestNesting = 64;
constexpr double kInfinite = std::numeric_limits<double>::infinity();

// Curves that draw nothing but their shape.
bool isItsShape(const AcDbCurve& curve) {
    const AcRxClass* const descriptor = curve.isA();
    for (const AcRxClass* each :
         {AcDbLine::desc(), AcDbArc::desc(), AcDbCircle::desc(), AcDbEllipse::desc(),
          AcDbSpline::desc(), AcDbRay::desc(), AcDbXline::desc(), AcDb3dPolyline::desc()}) {
        if (descriptor == each) return true;
    }
    const auto* const polyline = AcDbPolyline::cast(&curve);
    return polyline != nullptr && !polyline->hasWidth();
}

// Takes what is drawn apart into pieces and areas of the display plane.
class OutlineDraw final : public AcGiWorldDraw, private AcGiGeometry {
  public:
    OutlineDraw(const AcGeMatrix3d& toDisplay, OutlineSink& sink)
        : transforms_{flattened(toDisplay)}, sink_(sink) {}

    AcGiRegenType regenType() const override { return kAcGiStandardDisplay; }
    bool regenAbort() const override { return done_; }
    bool isDragging() const override { return false; }
    double deviation(const AcGePoint3d&) const override { return 1e-4; }
    AcGiGeometry& geometry() const override { return const_cast<OutlineDraw&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return traits_; }

    bool draw(AcGiDrawable* drawable) override {
        if (done_ || drawable == nullptr || depth_ == kDeepestNesting) return done_;
        ++depth_;
        const double thickness = traits_.thickness();
        const AcGiFillType fill = traits_.fillType();
        traits_.setThickness(0);
        traits_.setFillType(kAcGiFillNever);
        if (isShown(*drawable)) drawShown(*drawable);
        traits_.setThickness(thickness);
        traits_.setFillType(fill);
        --depth_;
        return done_;
    }

  private:
    static AcGeMatrix3d flattened(AcGeMatrix3d matrix) {
        for (double& entry : matrix.entry[2])
            entry = 0;
        return matrix;
    }

    // What stands on layer "0" of a block shows where the whole does.
    bool isShown(const AcGiDrawable& drawable) {
        const auto* const entity = AcDbEntity::cast(&drawable);
        if (entity == nullptr || depth_ == 1) return true;
        const AcDbDatabase* const database = entity->database();
        const AcDbObjectId layer = entity->layerId();
        return database == nullptr || layer == database->layerZero() || sink_.shows(layer);
    }

    void drawShown(AcGiDrawable& drawable) {
        const auto* const curve = AcDbCurve::cast(&drawable);
        CurveShape shape;
        if (curve != nullptr) {
            const bool whole = isItsShape(*curve);
            const bool also =
                AcDbPolyline::cast(curve) != nullptr || AcDb2dPolyline::cast(curve) != nullptr;
            if ((whole || also) && CurveAccess::shapeOf(*curve, shape)) {
                for (const model::Span& span : shape.spans)
                    addRaised(span.piece, shape.normal * shape.thickness);
                if (whole) return;
            }
        }
        drawable.worldDraw(this);
    }

    // ---- To the display

    void add(const Piece& piece) {
        if (!done_) done_ = sink_.piece(piece.transformed(transforms_.back()));
    }
    void addLine(const AcGePoint3d& from, const AcGePoint3d& to) { add(Piece::line(from, to)); }
    // With the walls that thickness gives it.
    void addRaised(const Piece& piece, const AcGeVector3d& lift) {
        add(piece);
        if (lift.isZeroLength() || !piece.isBounded()) return;
        add(piece.transformed(AcGeMatrix3d::translation(lift)));
        addLine(piece.start(), piece.start() + lift);
        addLine(piece.end(), piece.end() + lift);
    }
    AcGePoint2d shown(const AcGePoint3d& point) const {
        const AcGePoint3d seen = transforms_.back() * point;
        return {seen.x, seen.y};
    }
    bool addArea(const std::vector<Loop>& loops) {
        if (!done_) done_ = sink_.area(loops);
        return done_;
    }

    // ---- AcGiGeometry

    AcGeMatrix3d getModelToWorldTransform() const override { return transforms_.back(); }
    bool pushModelTransform(const AcGeMatrix3d& transform) override {
        transforms_.push_back(transforms_.back() * transform);
        return done_;
    }
    bool popModelTransform() override {
        if (transforms_.size() > 1) transforms_.pop_back();
        return done_;
    }
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        return arc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType type) override {
        arc(center, radius, normal, start, sweep);
        if (type == kAcGiArcSimple) return done_;
        const AcGePoint3d first = center + start.normal() * radius;
        const AcGePoint3d last =
            center + AcGeMatrix3d::rotation(sweep, normal) * (start.normal() * radius);
        if (type == kAcGiArcChord) {
            addLine(first, last);
        } else {
            addLine(center, first);
            addLine(center, last);
        }
        return done_;
    }
    bool polyline(uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  int64_t) override {
        const AcGeVector3d lift =
            normal == nullptr ? AcGeVector3d() : *normal * traits_.thickness();
        if (count == 1) addLine(points[0], points[0]);
        for (uint32_t i = 1; i < count && !done_; ++i)
            addRaised(Piece::line(points[i - 1], points[i]), lift);
        return done_;
    }
    bool polygon(uint32_t count, const AcGePoint3d* points) override {
        if (traits_.fillType() == kAcGiFillAlways) {
            return polyPolygon(1, &count, points, AcGeVector3d::kZAxis);
        }
        for (uint32_t i = 0; i < count && !done_; ++i)
            addLine(points[i], points[(i + 1) % count]);
        return done_;
    }
    bool polyPolygon(uint32_t count, const uint32_t* counts, const AcGePoint3d* points,
                     const AcGeVector3d&) override {
        std::vector<Loop> loops(count);
        for (uint32_t i = 0; i < count; points += counts[i++]) {
            for (uint32_t at = 0; at < counts[i]; ++at)
                loops[i].push_back(shown(points[at]));
        }
        return addArea(loops);
    }
    bool shell(uint32_t, const AcGePoint3d* vertices, uint32_t size,
               const int32_t* faces) override {
        for (uint32_t at = 0; at < size && !done_;) {
            const auto count = static_cast<uint32_t>(std::abs(faces[at++]));
            for (uint32_t i = 0; i < count; ++i)
                addLine(vertices[faces[at + i]], vertices[faces[at + (i + 1) % count]]);
            at += count;
        }
        return done_;
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
              const AcGeVector3d& direction, const std::wstring& line,
              const AcGiTextStyle& style) override {
        const text::LineBox box = text::measureLine(line, style);
        if (box.isEmpty()) return done_;
        const AcGeVector3d along = direction.normal();
        const AcGeVector3d up = normal.crossProduct(along).normal();
        const auto corner = [&](double x, double y) {
            return shown(position + along * x + up * y);
        };
        return addArea({{corner(box.left, box.bottom), corner(box.right, box.bottom),
                         corner(box.right, box.top), corner(box.left, box.top)}});
    }
    bool ray(const AcGePoint3d& first, const AcGePoint3d& second) override {
        add(Piece::line(first, second - first, 0, kInfinite));
        return done_;
    }
    bool xline(const AcGePoint3d& first, const AcGePoint3d& second) override {
        add(Piece::line(first, second - first, -kInfinite, kInfinite));
        return done_;
    }
    bool arc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
             const AcGeVector3d& start, double sweep) {
        const AcGeVector3d axis = sweep < 0 ? -normal.normal() : normal.normal();
        const AcGeVector3d u = start.normal() * radius;
        addRaised(Piece::conic(center, u, axis.crossProduct(u), 0, std::abs(sweep)),
                  normal.normal() * traits_.thickness());
        return done_;
    }

    std::vector<AcGeMatrix3d> transforms_;
    OutlineSink& sink_;
    mutable model::PlainTraits traits_;
    int depth_ = 0;
    bool done_ = false;
};

}  // namespace

// Drawing changes nothing in an entity, though it is no const operation.
void outline(const AcDbEntity& entity, const AcGeMatrix3d& toDisplay, OutlineSink& sink) {
    const model::Unguarded guard(entity);
    OutlineDraw(toDisplay, sink).draw(const_cast<AcDbEntity*>(&entity));
}

}  // namespace sg
