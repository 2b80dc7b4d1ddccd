#include "host/model/entities/mesh/mesh_vertices.h"

#include "host/model/curves/filing_groups.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyFaceMeshVertex, AcDbVertex, 0, 0, L"VERTEX", L"")
ACRX_DXF_DEFINE_MEMBERS(AcDbPolygonMeshVertex, AcDbVertex, 0, 0, L"VERTEX", L"")
ACRX_DXF_DEFINE_MEMBERS(AcDbFaceRecord, AcDbVertex, 0, 0, L"VERTEX", L"")

namespace sg::model {
namespace {

// Programs see the groups of every kind of vertex.
void writeWidths(AcDbDxfFiler& filer) {
    for (const int code : {40, 41, 42})
        filer.writeDouble(code, 0);
}

}  // namespace

MeshVertex::MeshVertex(const AcGePoint3d& position, uint8_t always)
    : position_(position), always_(always), flags_(always) {}
MeshVertex::~MeshVertex() = default;

Acad::ErrorStatus MeshVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeUInt8(flags_);
    return filer->writePoint3d(position_);
}

Acad::ErrorStatus MeshVertex::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readUInt8(&flags_);
    flags_ |= always_;
    return filer->readPoint3d(&position_);
}

Acad::ErrorStatus MeshVertex::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(isA()->name())) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) position_ = fields.point();
        if (fields.code() == 70) flags_ = static_cast<uint8_t>(fields.integer()) | always_;
    }
    return filer->filerStatus();
}

Acad::ErrorStatus MeshVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    filer->writeString(100, isA()->name());
    filer->writePoint3d(10, position_);
    if (all) writeWidths(*filer);
    filer->writeInt16(70, flags_);
    if (all) {
        filer->writeDouble(50, 0);
        for (const int code : {71, 72, 73, 74})
            filer->writeInt16(code, 0);
    }
    return filer->filerStatus();
}

}  // namespace sg::model

AcDbPolyFaceMeshVertex::AcDbPolyFaceMeshVertex(const AcGePoint3d& position)
    : MeshVertex(position, kOfMesh | kOfFaces) {}
AcDbPolyFaceMeshVertex::~AcDbPolyFaceMeshVertex() = default;

AcDbPolygonMeshVertex::AcDbPolygonMeshVertex(const AcGePoint3d& position)
    : MeshVertex(position, kOfMesh) {}
AcDbPolygonMeshVertex::~AcDbPolygonMeshVertex() = default;

// ---- Faces --------------------------------------------------------------------------------------

namespace {

constexpr int16_t kFaceFlag = 128;  // of group 70

}  // namespace

AcDbFaceRecord::AcDbFaceRecord() = default;
AcDbFaceRecord::AcDbFaceRecord(int16_t v0, int16_t v1, int16_t v2, int16_t v3)
    : vertices_{v0, v1, v2, v3} {}
AcDbFaceRecord::~AcDbFaceRecord() = default;

Acad::ErrorStatus AcDbFaceRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    for (const int16_t vertex : vertices_)
        filer->writeInt16(vertex);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbFaceRecord::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    for (int16_t& vertex : vertices_)
        filer->readInt16(&vertex);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbFaceRecord::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbFaceRecord")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        const int code = fields.code();
        if (code < 71 || code > 74) continue;
        vertices_[static_cast<size_t>(code - 71)] = static_cast<int16_t>(fields.integer());
    }
    return filer->filerStatus();
}

// Drawing files have no marker of the class of vertices here.
Acad::ErrorStatus AcDbFaceRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    filer->writeString(100, L"AcDbFaceRecord");
    filer->writePoint3d(10, AcGePoint3d());
    if (all) writeWidths(*filer);
    filer->writeInt16(70, kFaceFlag);
    if (all) filer->writeDouble(50, 0);
    for (size_t i = 0; i < vertices_.size(); ++i) {
        if (all || vertices_[i] != 0) filer->writeInt16(71 + static_cast<int>(i), vertices_[i]);
    }
    return filer->filerStatus();
}
