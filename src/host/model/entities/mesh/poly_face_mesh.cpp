#include <algorithm>
#include <cstdlib>

#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/entities/mesh/mesh.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyFaceMesh, AcDbEntity, 0, 0, L"POLYLINE", L"")

namespace {

constexpr int16_t kPolyFaceFlag = 64;  // of group 70

enum PartKind : uint8_t { kVertex = 0, kFace = 1 };

int16_t asCount(size_t count) {
    return static_cast<int16_t>(std::min<size_t>(count, INT16_MAX));
}

}  // namespace

AcDbPolyFaceMesh::AcDbPolyFaceMesh() = default;
AcDbPolyFaceMesh::~AcDbPolyFaceMesh() = default;

std::unique_ptr<AcDbEntity> AcDbPolyFaceMesh::newVertex(uint8_t kind) const {
    if (kind == kFace) return std::make_unique<AcDbFaceRecord>();
    return std::make_unique<AcDbPolyFaceMeshVertex>();
}

uint8_t AcDbPolyFaceMesh::kindOf(const AcDbEntity& vertex) const {
    return AcDbFaceRecord::cast(&vertex) != nullptr ? kFace : kVertex;
}

Acad::ErrorStatus AcDbPolyFaceMesh::appendVertex(AcDbPolyFaceMeshVertex* vertex) {
    AcDbObjectId id;
    return appendVertexEntity(id, vertex);
}

Acad::ErrorStatus AcDbPolyFaceMesh::appendFaceRecord(AcDbFaceRecord* face) {
    AcDbObjectId id;
    return appendVertexEntity(id, face);
}

int16_t AcDbPolyFaceMesh::countVertices() const {
    return asCount(corners().size());
}

int16_t AcDbPolyFaceMesh::countFaces() const {
    size_t count = 0;
    forEachVertex<AcDbFaceRecord>([&](const AcDbFaceRecord&) { ++count; });
    return asCount(count);
}

namespace {

// The corners of a face; a triangle has its third one twice. False for fewer than three, and for
// vertices that are not there.
bool findFace(const AcDbFaceRecord& record, const std::vector<AcGePoint3d>& points,
              MeshFace& face) {
    size_t count = 0;
    for (const int16_t number : record.vertices()) {
        const auto index = static_cast<size_t>(std::abs(int{number}));
        if (index == 0) break;
        if (index > points.size()) return false;
        face.corners[count] = points[index - 1];
        face.isHidden[count++] = number < 0;
    }
    if (count != 3) return count == 4;
    // The edge back to the first corner is the last of four.
    face.corners[3] = face.corners[2];
    face.isHidden[3] = face.isHidden[2];
    face.isHidden[2] = false;
    return true;
}

}  // namespace

std::vector<MeshFace> AcDbPolyFaceMesh::faces() const {
    const std::vector<AcGePoint3d> points = corners();
    std::vector<MeshFace> found;
    forEachVertex<AcDbFaceRecord>([&](const AcDbFaceRecord& record) {
        MeshFace face;
        if (findFace(record, points, face)) found.push_back(face);
    });
    return found;
}

// A face of two vertices is a line, one of a single vertex a point that is not drawn.
void AcDbPolyFaceMesh::drawEdges(AcGiGeometry& geometry) const {
    const std::vector<AcGePoint3d> points = corners();
    forEachVertex<AcDbFaceRecord>([&](const AcDbFaceRecord& record) {
        const auto& numbers = record.vertices();
        const auto end = std::find(numbers.begin(), numbers.end(), 0);
        const auto count = static_cast<size_t>(end - numbers.begin());
        const size_t edges = count > 2 ? count : count / 2;
        for (size_t i = 0; i < edges; ++i) {
            const auto from = static_cast<size_t>(std::abs(int{numbers[i]}));
            const auto to = static_cast<size_t>(std::abs(int{numbers[(i + 1) % count]}));
            if (numbers[i] < 0 || from > points.size() || to > points.size()) continue;
            const AcGePoint3d edge[] = {points[from - 1], points[to - 1]};
            geometry.polyline(2, edge);
        }
    });
}

void AcDbPolyFaceMesh::subList() const {
    Mesh::subList();
    for (const AcGePoint3d& corner : corners())
        listPoint(L"VERTEX at", corner);
}

// ---- Filing -------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbPolyFaceMesh::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = Mesh::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeInt16(countVertices());
    filer->writeInt16(countFaces());
    return writeVertices(filer);
}

Acad::ErrorStatus AcDbPolyFaceMesh::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = Mesh::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    int16_t count = 0;  // the vertices themselves tell it
    filer->readInt16(&count);
    filer->readInt16(&count);
    return readVertices(filer);
}

// Everything else follows from the vertices and faces behind it.
Acad::ErrorStatus AcDbPolyFaceMesh::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = Mesh::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbPolyFaceMesh")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyFaceMesh::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = Mesh::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    filer->writeString(100, L"AcDbPolyFaceMesh");
    filer->writeInt16(66, 1);
    filer->writePoint3d(10, AcGePoint3d());
    filer->writeInt16(70, kPolyFaceFlag);
    if (all) {
        filer->writeDouble(40, 0);
        filer->writeDouble(41, 0);
        filer->writeVector3d(210, AcGeVector3d::kZAxis);
    }
    filer->writeInt16(71, countVertices());
    filer->writeInt16(72, countFaces());
    if (all) {
        for (const int code : {73, 74, 75})
            filer->writeInt16(code, 0);
    }
    return filer->filerStatus();
}
