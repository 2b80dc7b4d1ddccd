#include <algorithm>
#include <cmath>

#include "host/model/curves/bulge_path.h"
#include "host/model/curves/spline_settings.h"
#include "platform/db/polyline_2d.h"

using namespace sg::model;

namespace {

AcGeVector2d unit(const AcGeVector2d& vector) {
    const double length = vector.length();
    return length > 0 ? vector / length : AcGeVector2d();
}

// The directions of a smooth curve through points: at each that of the circle through it and its
// neighbours; an open curve's ends bend like the spans beside them.
class Tangents {
  public:
    Tangents(const std::vector<AcGePoint2d>& points, bool closed)
        : points_(points), closed_(closed && points.size() > 2), directions_(points.size()) {
        for (size_t i = 0; i < points.size(); ++i) {
            if (closed_ || (i > 0 && i + 1 < points.size())) directions_[i] = inside(i);
        }
        if (closed_) return;
        const size_t last = points.size() - 1;
        directions_[0] = mirrored(points[1] - points[0], directions_[std::min<size_t>(1, last)]);
        directions_[last] = mirrored(points[last] - points[last - 1], directions_[last - 1]);
        if (last == 1) directions_[0] = directions_[1] = unit(points[1] - points[0]);
    }

    std::vector<AcGeVector2d>& directions() { return directions_; }

  private:
    AcGeVector2d inside(size_t i) const {
        const size_t count = points_.size();
        const AcGeVector2d before = points_[i] - points_[(i + count - 1) % count];
        const AcGeVector2d after = points_[(i + 1) % count] - points_[i];
        if (before.lengthSqrd() == 0) return unit(after);
        if (after.lengthSqrd() == 0) return unit(before);
        const AcGeVector2d sum = before / before.lengthSqrd() + after / after.lengthSqrd();
        // Straight back the way it came: a turn to the left.
        if (sum.length() <= 1e-12 / before.length()) return unit(before.perpVector());
        return unit(sum);
    }

    static AcGeVector2d mirrored(const AcGeVector2d& chord, const AcGeVector2d& direction) {
        const AcGeVector2d along = unit(chord);
        return along * (2 * along.dotProduct(direction)) - direction;
    }

    const std::vector<AcGePoint2d>& points_;
    bool closed_;
    std::vector<AcGeVector2d> directions_;
};

// The point where two arcs meet smoothly that lead from one point to another along given
// directions; both arcs' tangents from the ends are equally long.
struct ArcPair {
    AcGePoint2d joint;
    double firstBulge = 0;
    double secondBulge = 0;

    ArcPair(const AcGePoint2d& from, const AcGeVector2d& start, const AcGePoint2d& to,
            const AcGeVector2d& end) {
        const AcGeVector2d chord = to - from;
        const double length = tangentLength(chord, start, end);
        joint = from + (chord + (start - end) * length) / 2;
        firstBulge = bulgeLeaving(from, start, joint);
        secondBulge = -bulgeLeaving(to, -end, joint);
    }

    // |chord - length (start + end)| = 2 length.
    static double tangentLength(const AcGeVector2d& chord, const AcGeVector2d& start,
                                const AcGeVector2d& end) {
        const double ahead = chord.dotProduct(start + end);
        const double spread = 2 * (1 - start.dotProduct(end));
        const double size = chord.lengthSqrd();
        if (spread > 1e-12) return (-ahead + std::sqrt(ahead * ahead + spread * size)) / spread;
        return ahead > 1e-12 * std::sqrt(size) ? size / (2 * ahead) : 0;
    }
};

}  // namespace

std::vector<VertexSlot> AcDb2dPolyline::takeOriginals() {
    std::vector<VertexSlot> kept;
    for (VertexSlot& slot : takeSlots()) {
        AcDbEntity* const entity = VertexCurve::openVertex(slot);
        AcDb2dVertex* const vertex = AcDb2dVertex::cast(entity);
        if (vertex == nullptr) continue;
        const AcDb::Vertex2dType type = vertex->vertexType();
        const bool original = type == AcDb::k2dVertex || type == AcDb::k2dSplineCtlVertex;
        const double endWidth = vertex->endWidth();
        if (original) vertex->setVertexType(AcDb::k2dVertex);
        closeVertex(slot, entity);
        if (original) {
            kept.push_back(std::move(slot));
            continue;
        }
        // The second arc of a pair has the width that its segment had at the end.
        if (type == AcDb::k2dCurveFitVertex && !kept.empty()) {
            AcDbEntity* const before = VertexCurve::openVertex(kept.back());
            AcDb2dVertex::cast(before)->setEndWidth(endWidth);
            closeVertex(kept.back(), before);
        }
        eraseSlot(slot);
    }
    return kept;
}

std::vector<AcGePoint2d> AcDb2dPolyline::positions() const {
    std::vector<AcGePoint2d> points;
    forEachVertex<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        points.emplace_back(vertex.position().x, vertex.position().y);
    });
    return points;
}

Acad::ErrorStatus AcDb2dPolyline::straighten() {
    assertWriteEnabled();
    setSlots(takeOriginals());
    changeVertices<AcDb2dVertex>([](AcDb2dVertex& vertex) { vertex.setBulge(0); });
    type_ = AcDb::k2dSimplePoly;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::curveFit() {
    assertWriteEnabled();
    straighten();
    const std::vector<AcGePoint2d> points = positions();
    if (points.size() < 2) return Acad::eDegenerateGeometry;
    std::vector<VertexSlot> originals = takeSlots();
    Tangents tangents(points, closed_);
    std::vector<AcGeVector2d>& directions = tangents.directions();
    const size_t spans = closed_ ? points.size() : points.size() - 1;
    std::vector<VertexSlot> fitted;
    for (size_t i = 0; i < originals.size(); ++i) {
        const AcDb2dVertex& vertex = *AcDb2dVertex::cast(peekVertex(originals[i]));
        if (!vertex.isTangentUsed()) continue;
        directions[i] = {std::cos(vertex.tangent()), std::sin(vertex.tangent())};
    }
    for (size_t i = 0; i < originals.size(); ++i) {
        const size_t next = (i + 1) % points.size();
        AcDbEntity* const entity = VertexCurve::openVertex(originals[i]);
        AcDb2dVertex& vertex = *AcDb2dVertex::cast(entity);
        vertex.setTangent(directions[i].angle());
        VertexSlot extra;
        if (i < spans && !points[i].isEqualTo(points[next])) {
            const ArcPair pair(points[i], directions[i], points[next], directions[next]);
            const double middleWidth = (vertex.startWidth() + vertex.endWidth()) / 2;
            auto joint =
                std::make_unique<AcDb2dVertex>(AcGePoint3d(pair.joint.x, pair.joint.y, elevation_),
                                               pair.secondBulge, middleWidth, vertex.endWidth());
            joint->setVertexType(AcDb::k2dCurveFitVertex);
            joint->setPropertiesFrom(this);
            extra.loose = std::move(joint);
            vertex.setBulge(pair.firstBulge);
            vertex.setEndWidth(middleWidth);
        }
        closeVertex(originals[i], entity);
        fitted.push_back(std::move(originals[i]));
        if (extra.loose != nullptr) fitted.push_back(std::move(extra));
    }
    setSlots(std::move(fitted));
    type_ = AcDb::k2dFitCurvePoly;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::splineFit() {
    const SplineSettings settings = splineSettings(database());
    return splineFit(settings.quadratic ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly,
                     settings.segments);
}

namespace {

// Arcs between the points of a spline, as curve fitting makes them, one for each two points.
void bendSegments(std::vector<BulgeVertex>& vertices, bool closed) {
    std::vector<AcGePoint2d> points;
    for (const BulgeVertex& vertex : vertices)
        points.push_back(vertex.point);
    Tangents tangents(points, closed);
    for (size_t i = 0; i < points.size(); ++i) {
        const size_t next = (i + 1) % points.size();
        if (next == 0 && !closed) continue;
        vertices[i].bulge = bulgeLeaving(points[i], tangents.directions()[i], points[next]);
    }
}

}  // namespace

Acad::ErrorStatus AcDb2dPolyline::splineFit(AcDb::Poly2dType splineType, int16_t splineSegments) {
    assertWriteEnabled();
    if (splineType != AcDb::k2dQuadSplinePoly && splineType != AcDb::k2dCubicSplinePoly) {
        return Acad::eInvalidInput;
    }
    straighten();
    const std::vector<AcGePoint2d> frame = positions();
    if (frame.size() < 2) return Acad::eDegenerateGeometry;
    std::vector<VertexSlot> slots = takeSlots();
    const int degree = splineType == AcDb::k2dQuadSplinePoly ? 2 : 3;
    const int segments = splineSegments == 0 ? splineSettings(database()).segments : splineSegments;
    std::vector<BulgeVertex> curve;
    std::vector<AcGePoint3d> polygon;
    for (const AcGePoint2d& point : frame)
        polygon.emplace_back(point.x, point.y, 0);
    for (const AcGePoint3d& point : splinePoints(polygon, degree, closed_, segments)) {
        curve.push_back({{point.x, point.y}, 0, startWidth_, startWidth_});
    }
    // From the default width at the start to that at the end.
    const double step = (endWidth_ - startWidth_) / static_cast<double>(curve.size());
    for (size_t i = 0; i < curve.size(); ++i) {
        curve[i].startWidth = startWidth_ + step * static_cast<double>(i);
        curve[i].endWidth = curve[i].startWidth + step;
    }
    if (segments < 0) bendSegments(curve, closed_);
    for (const VertexSlot& slot : slots) {
        AcDbEntity* const entity = VertexCurve::openVertex(slot);
        AcDb2dVertex::cast(entity)->setVertexType(AcDb::k2dSplineCtlVertex);
        closeVertex(slot, entity);
    }
    for (const BulgeVertex& point : curve) {
        auto vertex =
            std::make_unique<AcDb2dVertex>(AcGePoint3d(point.point.x, point.point.y, elevation_),
                                           point.bulge, point.startWidth, point.endWidth);
        vertex->setVertexType(AcDb::k2dSplineFitVertex);
        vertex->setPropertiesFrom(this);
        slots.push_back({AcDbObjectId(), std::move(vertex)});
    }
    setSlots(std::move(slots));
    type_ = splineType;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::convertToPolyType(AcDb::Poly2dType type) {
    if (type == type_) return Acad::eOk;
    if (type == AcDb::k2dSimplePoly) return straighten();
    if (type == AcDb::k2dFitCurvePoly) return curveFit();
    return splineFit(type, splineSettings(database()).segments);
}
