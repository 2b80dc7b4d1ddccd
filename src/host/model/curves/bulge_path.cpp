#include "host/model/curves/bulge_path.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/db/arc.h"
#include "platform/db/line.h"

namespace sg::model {

namespace {

// Flatter arcs are as good as straight: rounding of their far centres would be larger than their
// height.
constexpr double kStraight = 1e-8;

AcGePoint3d raised(const AcGePoint2d& point) {
    return {point.x, point.y, 0};
}

AcGeVector3d raised(const AcGeVector2d& vector) {
    return {vector.x, vector.y, 0};
}

AcGePoint2d flat(const AcGePoint3d& point) {
    return {point.x, point.y};
}

}  // namespace

size_t BulgePath::segments() const {
    if (vertices.size() < 2) return 0;
    return closed ? vertices.size() : vertices.size() - 1;
}

Piece BulgePath::segmentInPlane(size_t index) const {
    const BulgeVertex& from = vertices[index];
    const AcGePoint2d& to = vertices[(index + 1) % vertices.size()].point;
    const AcGeVector2d chord = to - from.point;
    const double bulge = from.bulge;
    if (std::abs(bulge) < kStraight || chord.lengthSqrd() == 0) {
        return Piece::line(raised(from.point), raised(to));
    }
    const AcGePoint2d middle = from.point + chord / 2;
    const AcGePoint2d center =
        middle + chord.perpVector() * ((1 - bulge) * (1 + bulge) / (4 * bulge));
    const AcGeVector2d spoke = from.point - center;
    const AcGeVector2d ahead = bulge > 0 ? spoke.perpVector() : -spoke.perpVector();
    return Piece::conic(raised(center), raised(spoke), raised(ahead), 0,
                        4 * std::atan(std::abs(bulge)));
}

AcGePoint3d BulgePath::worldPoint(const AcGePoint2d& point) const {
    return fromPlane(AcGeMatrix3d::planeToWorld(normal), point, elevation);
}

Piece BulgePath::segment(size_t index) const {
    AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal);
    toWorld = toWorld * AcGeMatrix3d::translation({0, 0, elevation});
    return segmentInPlane(index).transformed(toWorld);
}

bool BulgePath::addTo(CurveShape& shape) const {
    if (vertices.empty()) return false;
    shape.closed = closed;
    shape.normal = normal;
    shape.thickness = thickness;
    shape.spans.reserve(std::max<size_t>(segments(), 1));
    for (size_t i = 0; i < segments(); ++i) {
        const auto from = static_cast<double>(i);
        shape.spans.emplace_back(segment(i), from, from + 1);
    }
    if (shape.spans.empty()) {
        const AcGePoint3d only = worldPoint(vertices.front().point);
        shape.spans.emplace_back(Piece::line(only, AcGeVector3d(), 0, 0));
    }
    return true;
}

namespace {

double fractionOfBulge(double bulge, double fraction) {
    return std::tan(std::atan(bulge) * fraction);
}

// The vertex in the middle of a segment from which the part between two fractions starts.
BulgeVertex cutSegment(const BulgePath& path, size_t index, double from, double to) {
    const BulgeVertex& vertex = path.vertices[index];
    if (from == 0 && to == 1) return vertex;
    const Piece piece = path.segmentInPlane(index);
    BulgeVertex cut;
    cut.point = from == 0 ? vertex.point : flat(piece.at(piece.last * from));
    cut.bulge = fractionOfBulge(vertex.bulge, to - from);
    const double taper = vertex.endWidth - vertex.startWidth;
    cut.startWidth = vertex.startWidth + taper * from;
    cut.endWidth = vertex.startWidth + taper * to;
    return cut;
}

}  // namespace

BulgePath BulgePath::part(double from, double to) const {
    BulgePath result = *this;
    result.closed = false;
    result.vertices.clear();
    const auto last = static_cast<double>(segments());
    double at = from;
    while (at < to) {
        const double index = std::min(std::floor(at), last - 1);
        const double next = std::min(to, index + 1);
        const auto segment = static_cast<size_t>(index);
        result.vertices.push_back(cutSegment(*this, segment, at - index, next - index));
        at = next;
    }
    const double index = std::min(std::floor(to), last - 1);
    const auto segment = static_cast<size_t>(index);
    const bool atVertex = to == index + 1;
    BulgeVertex end;
    const Piece piece = segmentInPlane(segment);
    end.point = atVertex      ? vertices[(segment + 1) % vertices.size()].point
                : to == index ? vertices[segment].point
                              : flat(piece.at(piece.last * (to - index)));
    result.vertices.push_back(end);
    return result;
}

BulgePath BulgePath::reversed() const {
    BulgePath result = *this;
    const size_t count = vertices.size();
    for (size_t i = 0; i < count; ++i) {
        BulgeVertex& vertex = result.vertices[i];
        vertex.point = vertices[count - 1 - i].point;
        // The segment that led here is the one that leads away now.
        const BulgeVertex& segment = vertices[(2 * count - 2 - i) % count];
        vertex.bulge = -segment.bulge;
        vertex.startWidth = segment.endWidth;
        vertex.endWidth = segment.startWidth;
    }
    return result;
}

void BulgePath::transformBy(const PlanarTransform& change) {
    for (BulgeVertex& vertex : vertices) {
        vertex.point = flat(change.ocs * AcGePoint3d(vertex.point.x, vertex.point.y, elevation));
        if (change.turnsOver) vertex.bulge = -vertex.bulge;
        vertex.startWidth *= change.scale;
        vertex.endWidth *= change.scale;
    }
    elevation = (change.ocs * AcGePoint3d(0, 0, elevation)).z;
    normal = change.normal;
    thickness *= change.thicknessScale;
}

void BulgePath::explode(AcDbVoidPtrArray& entities) const {
    for (size_t i = 0; i < segments(); ++i) {
        const Piece piece = segment(i);
        if (piece.kind == Piece::Kind::Line) {
            auto* const line = new AcDbLine(piece.start(), piece.end());
            line->setNormal(normal);
            line->setThickness(thickness);
            entities.append(line);
            continue;
        }
        const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal);
        const AcGeVector3d spoke = toPlane * piece.u;
        const double start = std::atan2(spoke.y, spoke.x);
        const bool forward = vertices[i].bulge > 0;
        const double end = forward ? start + piece.last : start - piece.last;
        auto* const arc = new AcDbArc(piece.origin, normal, piece.radius(), forward ? start : end,
                                      forward ? end : start);
        arc->setThickness(thickness);
        entities.append(arc);
    }
}

double bulgeThrough(const AcGePoint2d& start, const AcGePoint2d& middle, const AcGePoint2d& end) {
    const AcGeVector2d a = middle - start;
    const AcGeVector2d b = end - middle;
    const double cross = a.x * b.y - a.y * b.x;
    // The turn from one chord to the other is half the arc's angle.
    const double half = std::atan2(cross, a.dotProduct(b));
    if (std::abs(half) >= std::numbers::pi * (1 - 1e-12)) return 0;
    return std::tan(half / 2);
}

double bulgeLeaving(const AcGePoint2d& start, const AcGeVector2d& direction,
                    const AcGePoint2d& end) {
    const AcGeVector2d chord = end - start;
    const double cross = direction.x * chord.y - direction.y * chord.x;
    // The angle between tangent and chord is half the arc's angle.
    const double half = std::atan2(cross, direction.dotProduct(chord));
    return std::tan(half / 2);
}

}  // namespace sg::model
