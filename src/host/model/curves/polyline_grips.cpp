#include <cmath>
#include <vector>

#include "host/model/curves/bulge_path.h"
#include "platform/db/polyline.h"

using namespace sg::model;

namespace {

// What moving the middle of an arc makes of it.
void bend(BulgePath& path, size_t segment, const AcGeVector2d& offset) {
    BulgeVertex& from = path.vertices[segment];
    const BulgeVertex& to = path.vertices[(segment + 1) % path.vertices.size()];
    const Piece piece = path.segmentInPlane(segment);
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
    const size_t count = whole.vertices.size();
    std::vector<bool> moves(count, false);
    std::vector<size_t> bent;
    for (const int index : indices) {
        const auto grip = static_cast<size_t>(index);
        if (index < 0 || grip >= count + whole.segments()) continue;
        const size_t segment = grip - count;
        if (grip < count) {
            moves[grip] = true;
        } else if (whole.segmentInPlane(segment).kind == Piece::Kind::Line) {
            moves[segment] = moves[(segment + 1) % count] = true;
        } else {
            bent.push_back(segment);
        }
    }
    // An arc that moves with both its ends keeps its form.
    std::erase_if(bent, [&](size_t s) { return moves[s] && moves[(s + 1) % count]; });
    for (size_t i = 0; i < count; ++i) {
        if (moves[i]) whole.vertices[i].point += own;
    }
    for (const size_t segment : bent)
        bend(whole, segment, own);
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
