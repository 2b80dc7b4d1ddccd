#include <cmath>
#include <numbers>

#include "host/model/curves/curve_access.h"
#include "host/model/curves/math/angles.h"
#include "platform/db/curve.h"

using sg::model::angleFrom;
using sg::model::CurveAccess;
using sg::model::CurveShape;
using sg::model::Piece;
using sg::model::Span;

namespace {

constexpr double kQuarter = std::numbers::pi / 2;

void appendEnds(const CurveShape& shape, AcGePoint3dArray& points) {
    for (const Span& span : shape.spans) {
        if (std::isfinite(span.from)) points.append(span.piece.start());
    }
    if (std::isfinite(shape.endParam()) && !shape.closed) {
        points.append(shape.spans.back().piece.end());
    }
}

void appendMiddles(const CurveShape& shape, AcGePoint3dArray& points) {
    for (const Span& span : shape.spans) {
        const Piece& piece = span.piece;
        if (!piece.isBounded()) continue;
        const double half = piece.length(piece.first, piece.last) / 2;
        points.append(piece.at(piece.paramAtLength(piece.first, half)));
    }
}

void appendCenters(const CurveShape& shape, AcGePoint3dArray& points) {
    for (const Span& span : shape.spans) {
        if (span.piece.kind == Piece::Kind::Conic) points.append(span.piece.origin);
    }
}

// A circle's quadrants lie on the axes of its plane, an ellipse's on its own.
void appendQuadrants(const CurveShape& shape, AcGePoint3dArray& points) {
    const AcGeVector3d xAxis = AcGeMatrix3d::planeToWorld(shape.normal) * AcGeVector3d::kXAxis;
    for (const Span& span : shape.spans) {
        const Piece& piece = span.piece;
        if (piece.kind != Piece::Kind::Conic) continue;
        double zero = 0;
        if (piece.isCircular()) {
            zero = std::atan2(xAxis.dotProduct(piece.v), xAxis.dotProduct(piece.u));
        }
        for (int i = 0; i < 4; ++i) {
            const double t = angleFrom(zero + i * kQuarter, piece.first);
            if (t <= piece.last + 1e-12) points.append(piece.at(t));
        }
    }
}

// Feet of perpendiculars; on lines also beyond their ends.
void appendPerpendicular(const CurveShape& shape, const AcGePoint3d& from,
                         AcGePoint3dArray& points) {
    for (const Span& span : shape.spans) {
        const bool line = span.piece.kind == Piece::Kind::Line;
        const Piece piece = line ? span.piece.extended(true, true) : span.piece;
        std::vector<double> feet;
        piece.appendFeet(from, feet);
        for (const double t : feet)
            points.append(piece.at(t));
    }
}

void appendTangent(const CurveShape& shape, const AcGePoint3d& from, AcGePoint3dArray& points) {
    for (const Span& span : shape.spans) {
        std::vector<double> touches;
        span.piece.appendTangents(from, shape.normal, touches);
        for (const double t : touches)
            points.append(span.piece.at(t));
    }
}

// The nearest point as seen: `view` takes the world to the viewer's coordinates.
void appendNearest(const CurveShape& shape, const AcGePoint3d& pick, const AcGeMatrix3d& view,
                   AcGePoint3dArray& points) {
    const AcGeVector3d sight = view.inverse() * AcGeVector3d::kZAxis;
    if (sight.isZeroLength()) return;
    points.append(shape.closestAlong(pick, sight / sight.length()).point);
}

}  // namespace

Acad::ErrorStatus AcDbCurve::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                               const AcGePoint3d& pick, const AcGePoint3d& last,
                                               const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                               AcDbIntArray& geomIds) const {
    assertReadEnabled();
    CurveShape shape;
    if (!CurveAccess::shapeOf(*this, shape)) {
        return AcDbEntity::subGetOsnapPoints(mode, marker, pick, last, view, points, geomIds);
    }
    switch (mode) {
        case AcDb::kOsModeEnd:
            appendEnds(shape, points);
            break;
        case AcDb::kOsModeMid:
            appendMiddles(shape, points);
            break;
        case AcDb::kOsModeCen:
            appendCenters(shape, points);
            break;
        case AcDb::kOsModeQuad:
            appendQuadrants(shape, points);
            break;
        case AcDb::kOsModePerp:
            appendPerpendicular(shape, last, points);
            break;
        case AcDb::kOsModeTan:
            appendTangent(shape, last, points);
            break;
        case AcDb::kOsModeNear:
            appendNearest(shape, pick, view, points);
            break;
        case AcDb::kOsModeNode:
        case AcDb::kOsModeIns:
            break;
    }
    return Acad::eOk;
}
