#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/entities/mesh/mesh.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbPolygonMesh, AcDbEntity, 0, 0, L"POLYLINE", L"")

namespace {

enum MeshFlag { kClosedAlongM = 1, kMeshFlag = 16, kClosedAlongN = 32 };  // of group 70

}  // namespace

AcDbPolygonMesh::AcDbPolygonMesh() = default;
AcDbPolygonMesh::~AcDbPolygonMesh() = default;

std::unique_ptr<AcDbEntity> AcDbPolygonMesh::newVertex(uint8_t) const {
    return std::make_unique<AcDbPolygonMeshVertex>();
}

Acad::ErrorStatus AcDbPolygonMesh::appendVertex(AcDbPolygonMeshVertex* vertex) {
    AcDbObjectId id;
    return appendVertexEntity(id, vertex);
}

bool AcDbPolygonMesh::isClosedAlongM() const {
    return (flags_ & kClosedAlongM) != 0;
}
bool AcDbPolygonMesh::isClosedAlongN() const {
    return (flags_ & kClosedAlongN) != 0;
}

bool AcDbPolygonMesh::isComplete() const {
    return rows() >= 2 && columns() >= 2 && corners().size() == rows() * columns();
}

std::vector<MeshFace> AcDbPolygonMesh::faces() const {
    std::vector<MeshFace> found;
    if (!isComplete()) return found;
    const std::vector<AcGePoint3d> points = corners();
    const size_t across = isClosedAlongM() ? rows() : rows() - 1;
    const size_t along = isClosedAlongN() ? columns() : columns() - 1;
    const auto at = [&](size_t row, size_t column) {
        return points[row % rows() * columns() + column % columns()];
    };
    for (size_t row = 0; row < across; ++row) {
        for (size_t column = 0; column < along; ++column) {
            found.push_back({{at(row, column), at(row, column + 1), at(row + 1, column + 1),
                              at(row + 1, column)}});
        }
    }
    return found;
}

void AcDbPolygonMesh::drawEdges(AcGiGeometry& geometry) const {
    if (!isComplete()) return;
    const std::vector<AcGePoint3d> points = corners();
    std::vector<AcGePoint3d> line;
    const auto drawLine = [&](size_t first, size_t count, size_t step, bool isClosed) {
        line.clear();
        for (size_t i = 0; i < count; ++i)
            line.push_back(points[first + i * step]);
        if (isClosed) line.push_back(line.front());
        geometry.polyline(static_cast<uint32_t>(line.size()), line.data());
    };
    for (size_t row = 0; row < rows(); ++row)
        drawLine(row * columns(), columns(), 1, isClosedAlongN());
    for (size_t column = 0; column < columns(); ++column)
        drawLine(column, rows(), columns(), isClosedAlongM());
}

void AcDbPolygonMesh::subList() const {
    Mesh::subList();
    for (const AcGePoint3d& corner : corners())
        listPoint(L"VERTEX at", corner);
}

// ---- Filing -------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbPolygonMesh::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = Mesh::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    for (const int16_t value : {flags_, type_, rows_, columns_, smoothRows_, smoothColumns_})
        filer->writeInt16(value);
    return writeVertices(filer);
}

Acad::ErrorStatus AcDbPolygonMesh::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = Mesh::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    for (int16_t* const value : {&flags_, &type_, &rows_, &columns_, &smoothRows_, &smoothColumns_})
        filer->readInt16(value);
    flags_ &= ~kMeshFlag;
    return readVertices(filer);
}

Acad::ErrorStatus AcDbPolygonMesh::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = Mesh::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbPolygonMesh")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        const auto value = static_cast<int16_t>(fields.integer());
        if (fields.code() == 70) flags_ = static_cast<int16_t>(value & ~kMeshFlag);
        if (fields.code() == 71) rows_ = value;
        if (fields.code() == 72) columns_ = value;
        if (fields.code() == 73) smoothRows_ = value;
        if (fields.code() == 74) smoothColumns_ = value;
        if (fields.code() == 75) type_ = value;
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolygonMesh::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = Mesh::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    filer->writeString(100, L"AcDbPolygonMesh");
    filer->writeInt16(66, 1);
    filer->writePoint3d(10, AcGePoint3d());
    filer->writeInt16(70, static_cast<int16_t>(flags_ | kMeshFlag));
    if (all) {
        filer->writeDouble(40, 0);
        filer->writeDouble(41, 0);
        filer->writeVector3d(210, AcGeVector3d::kZAxis);
    }
    filer->writeInt16(71, rows_);
    filer->writeInt16(72, columns_);
    if (all || smoothRows_ != 0) filer->writeInt16(73, smoothRows_);
    if (all || smoothColumns_ != 0) filer->writeInt16(74, smoothColumns_);
    if (all || type_ != 0) filer->writeInt16(75, type_);
    return filer->filerStatus();
}
