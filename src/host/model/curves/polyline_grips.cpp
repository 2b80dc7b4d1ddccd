#include <cmath>

#include "host/model/curves/bulge_path.h"
#include "platform/db/polyline.h"

using namespace sg::model;

namespace {

// What moves the middle of a segment.
void moveMiddle(BulgePath& path, size_t segment, const AcGeVector2d& offset) {
    BulgeVertex& from = path.vertices[segment];
    BulgeVertex& to = path.vertices[(segment + 1) % path.vertices.size()];
    const Piece piece = path.segmentInPlane(segment);
    if (piece.kind == Piece::Kind::Line) {
        from.point += offset;
        to.point += offset;
        return;
    }
    const AcGePoint3d middle = piece.at((piece.first + piece.last) / 2);
    from.bulge = bulgeThrough(from.point, AcGePoint2d(middle.x, middle.y) + offset, to.point);
}

AcGeVector2d inPlane(const AcGeVector3d& normal, const AcGeVector3d& offset) {
    const AcGeVector3d own = AcGeMatrix3d::worldToPlane(normal) * offset;
    return {own.x, own.y};
}

}  // namespace

Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    subGetStretchPoints(points);
    const BulgePath whole = path();
    for (size_t i = 0; i < whole.segments(); ++i) {
        const Piece piece = whole.segment(i);
        points.append(piece.at((piece.first + piece.last) / 2));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector2d own = inPlane(normal_, offset);
    BulgePath whole = path();
    const int count = static_cast<int>(whole.vertices.size());
    for (const int index : indices) {
        if (index < 0) continue;
        if (index < count) {
            whole.vertices[static_cast<size_t>(index)].point += own;
        } else if (static_cast<size_t>(index - count) < whole.segments()) {
            moveMiddle(whole, static_cast<size_t>(index - count), own);
        }
    }
    setPath(whole);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal_);
    for (const BulgeVertex& vertex : vertices_) {
        points.append(fromPlane(plane, vertex.point, elevation_));
    }
    return Acad::eOk;
}

// All vertices together also move out of the plane.
Acad::ErrorStatus AcDbPolyline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                       const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector2d own = inPlane(normal_, offset);
    std::vector<bool> moves(vertices_.size(), false);
    for (const int index : indices) {
        if (index >= 0 && static_cast<size_t>(index) < moves.size()) {
            moves[static_cast<size_t>(index)] = true;
        }
    }
    bool all = true;
    for (size_t i = 0; i < moves.size(); ++i) {
        if (moves[i]) vertices_[i].point += own;
        all = all && moves[i];
    }
    if (all && !vertices_.empty()) elevation_ += offset.dotProduct(normal_);
    return Acad::eOk;
}
