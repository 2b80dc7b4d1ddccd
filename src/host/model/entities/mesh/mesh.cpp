#include "host/model/entities/mesh/mesh.h"

#include "platform/db/face.h"

namespace sg::model {

Mesh::Mesh() = default;
Mesh::~Mesh() = default;

std::vector<AcGePoint3d> Mesh::corners() const {
    std::vector<AcGePoint3d> points;
    for (const VertexSlot& slot : slots_) {
        const auto* const vertex = dynamic_cast<const MeshVertex*>(peekVertex(slot));
        if (vertex != nullptr && !vertex->isFrame()) points.push_back(vertex->position());
    }
    return points;
}

bool Mesh::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    static constexpr int32_t kTriangle[] = {3, 0, 1, 2};
    static constexpr int32_t kBent[] = {3, 0, 1, 3, 3, 1, 2, 3};
    if (draw->regenType() == kAcGiShadedDisplay) {
        for (const MeshFace& face : faces()) {
            const bool isTriangle = face.corners[2] == face.corners[3];
            draw->geometry().shell(4, face.corners.data(), isTriangle ? 4 : 8,
                                   isTriangle ? kTriangle : kBent);
        }
    }
    drawEdges(draw->geometry());
    return true;
}

// Hidden edges reach as far as others.
Acad::ErrorStatus Mesh::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const std::vector<AcGePoint3d> points = corners();
    for (const AcGePoint3d& point : points)
        extents.addPoint(point);
    return points.empty() ? Acad::eInvalidExtents : Acad::eOk;
}

Acad::ErrorStatus Mesh::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    visitForWrite([&](AcDbEntity& entity) {
        auto* const vertex = dynamic_cast<MeshVertex*>(&entity);
        if (vertex != nullptr) vertex->setPosition(transform * vertex->position());
    });
    return Acad::eOk;
}

Acad::ErrorStatus Mesh::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                         AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : corners())
        points.append(corner);
    return Acad::eOk;
}

Acad::ErrorStatus Mesh::subMoveGripPointsAt(const AcDbIntArray& indices,
                                            const AcGeVector3d& offset) {
    assertWriteEnabled();
    int index = 0;
    visitForWrite([&](AcDbEntity& entity) {
        auto* const vertex = dynamic_cast<MeshVertex*>(&entity);
        if (vertex == nullptr || vertex->isFrame()) return;
        if (indices.contains(index++)) vertex->setPosition(vertex->position() + offset);
    });
    return Acad::eOk;
}

Acad::ErrorStatus Mesh::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t, const AcGePoint3d&,
                                          const AcGePoint3d&, const AcGeMatrix3d&,
                                          AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode != AcDb::kOsModeEnd && mode != AcDb::kOsModeMid) return Acad::eOk;
    for (const MeshFace& face : faces()) {
        for (size_t edge = 0; edge < face.corners.size(); ++edge) {
            const AcGePoint3d& from = face.corners[edge];
            const AcGePoint3d& to = face.corners[(edge + 1) % 4];
            if (from == to) continue;
            points.append(mode == AcDb::kOsModeEnd ? from : from + (to - from) / 2);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus Mesh::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    const std::vector<MeshFace> all = faces();
    for (const MeshFace& face : all) {
        const auto& c = face.corners;
        const auto& hidden = face.isHidden;
        auto* const made =
            new AcDbFace(c[0], c[1], c[2], c[3], !hidden[0], !hidden[1], !hidden[2], !hidden[3]);
        made->setPropertiesFrom(this);
        entities.append(made);
    }
    return all.empty() ? Acad::eCannotExplodeEntity : Acad::eOk;
}

}  // namespace sg::model
