#include "host/model/entities/hatch/loop.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/model/curves/bulge_path.h"
#include "host/model/curves/math/angles.h"

namespace sg::model {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

AcGePoint3d raised(const AcGePoint2d& point, double height = 0) {
    return {point.x, point.y, height};
}
AcGeVector3d raised(const AcGeVector2d& vector) {
    return {vector.x, vector.y, 0};
}
AcGePoint2d flat(const AcGePoint3d& point) {
    return {point.x, point.y};
}
AcGeVector2d flat(const AcGeVector3d& vector) {
    return {vector.x, vector.y};
}

bool isFinite(const AcGePoint2d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

double endBehind(double first, double last) {
    const double behind = angleFrom(last, first);
    return behind > first ? behind : first + kTurn;
}

// The edge that is this piece of a conic.
HatchEdge edgeOfConic(const Piece& conic) {
    HatchEdge edge;
    edge.center = flat(conic.origin);
    AcGeVector3d major = conic.u;
    AcGeVector3d minor = conic.v;
    edge.first = conic.first;
    if (conic.isCircular()) {
        edge.kind = HatchEdge::Kind::Arc;
        edge.counterClockwise = major.x * minor.y - major.y * minor.x > 0;
        const double turned = std::atan2(major.y, major.x);
        edge.first += edge.counterClockwise ? turned : -turned;
        edge.major = {major.length(), 0};
    } else {
        edge.kind = HatchEdge::Kind::Ellipse;
        const double turn =
            std::atan2(2 * major.dotProduct(minor), major.lengthSqrd() - minor.lengthSqrd()) / 2;
        major = conic.u * std::cos(turn) + conic.v * std::sin(turn);
        minor = conic.v * std::cos(turn) - conic.u * std::sin(turn);
        edge.first -= turn;
        edge.counterClockwise = major.x * minor.y - major.y * minor.x > 0;
        edge.major = flat(major);
        edge.ratio = minor.length() / major.length();
    }
    edge.first = normalAngle(edge.first);
    edge.last = edge.first + (conic.last - conic.first);
    return edge;
}

HatchEdge edgeOf(const Piece& piece) {
    if (piece.kind == Piece::Kind::Conic) return edgeOfConic(piece);
    HatchEdge edge;
    edge.start = flat(piece.start());
    edge.end = flat(piece.end());
    return edge;
}

// What a change of the plane does to its points, seen in the plane at height 0.
AcGeMatrix3d inPlane(const PlanarTransform& change, double elevation) {
    AcGeMatrix3d matrix = change.ocs * AcGeMatrix3d::translation({0, 0, elevation});
    matrix.entry[2][3] = 0;
    return matrix;
}

// The pieces of a polyline, whose bulges are arcs.
std::vector<Piece> polylinePieces(const HatchLoop& loop) {
    BulgePath path;
    path.closed = true;
    for (const HatchLoop::Vertex& vertex : loop.vertices) {
        if (!isFinite(vertex.point) || !std::isfinite(vertex.bulge)) continue;
        BulgeVertex& added = path.vertices.emplace_back();
        added.point = vertex.point;
        added.bulge = vertex.bulge;
    }
    if (!loop.closed && !path.vertices.empty()) path.vertices.back().bulge = 0;
    std::vector<Piece> pieces;
    for (size_t i = 0; i < path.segments(); ++i)
        pieces.push_back(path.segmentInPlane(i));
    return pieces;
}

}  // namespace

bool HatchEdge::isValid() const {
    if (kind == Kind::Spline) return spline.isValid();
    if (kind == Kind::Line) return isFinite(start) && isFinite(end);
    return isFinite(center) && std::isfinite(major.length() * ratio + first + last);
}

Piece HatchEdge::piece() const {
    switch (kind) {
        case Kind::Line:
            break;
        case Kind::Arc:
        case Kind::Ellipse: {
            const AcGeVector2d minor = major.perpVector() * (counterClockwise ? ratio : -ratio);
            const double from = normalAngle(first);
            return Piece::conic(raised(center), raised(major), raised(minor), from,
                                endBehind(from, last));
        }
        case Kind::Spline:
            return Piece::nurbs(spline);
    }
    return Piece::line(raised(start), raised(end));
}

void HatchEdge::transform(const PlanarTransform& change, double elevation) {
    const AcGeMatrix3d matrix = inPlane(change, elevation);
    if (kind == Kind::Spline) {
        spline = spline.transformed(matrix);
        for (AcGePoint2d& point : fitPoints)
            point = flat(matrix * raised(point));
        startTangent = flat(matrix * raised(startTangent));
        endTangent = flat(matrix * raised(endTangent));
        return;
    }
    *this = edgeOf(piece().transformed(matrix));
}

bool HatchLoop::hasBulges() const {
    return std::any_of(vertices.begin(), vertices.end(),
                       [](const Vertex& vertex) { return vertex.bulge != 0; });
}

std::vector<Piece> HatchLoop::pieces() const {
    std::vector<Piece> chain;
    if (isPolyline()) {
        chain = polylinePieces(*this);
    } else {
        for (const HatchEdge& edge : edges) {
            if (edge.isValid()) chain.push_back(edge.piece());
        }
    }
    if (chain.empty()) return chain;
    const AcGePoint3d start = chain.front().start();
    const AcGePoint3d end = chain.back().end();
    if (!start.isEqualTo(end)) chain.push_back(Piece::line(end, start));
    return chain;
}

void HatchLoop::transform(const PlanarTransform& change, double elevation) {
    if (isPolyline() && hasBulges() && !change.similar) {
        for (const Piece& piece : polylinePieces(*this))
            edges.push_back(edgeOf(piece));
        vertices.clear();
        type &= ~kPolyline;
    }
    const AcGeMatrix3d matrix = inPlane(change, elevation);
    for (Vertex& vertex : vertices) {
        vertex.point = flat(matrix * raised(vertex.point));
        if (change.turnsOver) vertex.bulge = -vertex.bulge;
    }
    for (HatchEdge& edge : edges)
        edge.transform(change, elevation);
}

double angleOfParameter(double parameter, double ratio) {
    const double angle = std::atan2(ratio * std::sin(parameter), std::cos(parameter));
    return angle + kTurn * std::round((parameter - angle) / kTurn);
}

double parameterOfAngle(double angle, double ratio) {
    return ratio == 0 ? angle : angleOfParameter(angle, 1 / ratio);
}

void writePlanePoint(AcDbDxfFiler* filer, int code, const AcGePoint2d& point) {
    if (filer->filerType() == AcDb::kBagFiler) {
        filer->writePoint3d(code, raised(point));
    } else {
        filer->writePoint2d(code, point);
    }
}

}  // namespace sg::model
