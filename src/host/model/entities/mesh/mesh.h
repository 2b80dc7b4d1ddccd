#pragma once

#include <array>
#include <vector>

#include "host/model/entities/mesh/mesh_vertices.h"
#include "platform/gi/draw.h"

namespace sg::model {

// A face of a mesh; the last two corners are one in a triangle. Edge i runs from corner i to the
// next.
struct MeshFace {
    std::array<AcGePoint3d, 4> corners;
    std::array<bool, 4> isHidden{};  // by edges
};

// A surface of plane faces between vertices that are entities of their own. Grips are the vertices.
class SG_API Mesh : public VertexMesh {
  public:
    ~Mesh() override;

    virtual std::vector<MeshFace> faces() const = 0;

  protected:
    Mesh();

    // Every edge that is shown, once.
    virtual void drawEdges(AcGiGeometry& geometry) const = 0;

    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    // The ends and the middles of edges.
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    // Into AcDbFace.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;

    // The vertices that are drawn.
    std::vector<AcGePoint3d> corners() const;
};

}  // namespace sg::model

// A mesh of single faces.
class SG_API AcDbPolyFaceMesh : public sg::model::Mesh {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPolyFaceMesh)
    AcDbPolyFaceMesh();
    ~AcDbPolyFaceMesh() override;

    Acad::ErrorStatus appendVertex(AcDbPolyFaceMeshVertex* vertex);
    Acad::ErrorStatus appendFaceRecord(AcDbFaceRecord* face);
    // Faces that name vertices that are not there are left out.
    std::vector<sg::model::MeshFace> faces() const override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    std::unique_ptr<AcDbEntity> newVertex(uint8_t kind) const override;
    uint8_t kindOf(const AcDbEntity& vertex) const override;
    void drawEdges(AcGiGeometry& geometry) const override;
    void subList() const override;

  private:
    int16_t countVertices() const;
    int16_t countFaces() const;
};

// A mesh of M rows and N columns of vertices, which follow each other row by row; perhaps smoothed,
// and then with rows and columns of its own besides those of the frame.
class SG_API AcDbPolygonMesh : public sg::model::Mesh {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPolygonMesh)
    AcDbPolygonMesh();
    ~AcDbPolygonMesh() override;

    Acad::ErrorStatus appendVertex(AcDbPolygonMeshVertex* vertex);
    // None when there are not as many vertices as rows and columns ask for.
    std::vector<sg::model::MeshFace> faces() const override;
    bool isComplete() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    std::unique_ptr<AcDbEntity> newVertex(uint8_t kind) const override;
    void drawEdges(AcGiGeometry& geometry) const override;
    void subList() const override;

  private:
    bool isSmooth() const { return type_ != 0; }
    bool isClosedAlongM() const;
    bool isClosedAlongN() const;
    // Of the vertices that are drawn; 0 for what is no number of them.
    size_t rows() const { return countOf(isSmooth() ? smoothRows_ : rows_); }
    size_t columns() const { return countOf(isSmooth() ? smoothColumns_ : columns_); }
    static size_t countOf(int16_t count) { return count > 0 ? static_cast<size_t>(count) : 0; }

    int16_t flags_ = 0;  // group 70 without the bit of meshes
    int16_t type_ = 0;   // of the smooth surface: 5, 6, 8; 0 for none
    int16_t rows_ = 0, columns_ = 0;
    int16_t smoothRows_ = 0, smoothColumns_ = 0;
};
