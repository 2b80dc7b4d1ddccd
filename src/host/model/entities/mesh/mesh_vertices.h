#pragma once

#include <array>

#include "platform/db/polyline_2d.h"

namespace sg::model {

// A corner of a mesh. Its flags are those of group 70.
class SG_API MeshVertex : public AcDbVertex {
  public:
    ~MeshVertex() override;

    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& point) { return assign(position_, point); }
    // Of the frame that a smooth surface follows; not drawn.
    bool isFrame() const { return (flags_ & kFrame) != 0; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    static constexpr uint8_t kSmooth = 8, kFrame = 16, kOfMesh = 64, kOfFaces = 128;

    // `always`: the flags that every vertex of the class has.
    MeshVertex(const AcGePoint3d& position, uint8_t always);

  private:
    AcGePoint3d position_;
    uint8_t always_;
    uint8_t flags_;
};

}  // namespace sg::model

// A corner of a mesh of single faces.
class SG_API AcDbPolyFaceMeshVertex : public sg::model::MeshVertex {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPolyFaceMeshVertex)
    explicit AcDbPolyFaceMeshVertex(const AcGePoint3d& position = AcGePoint3d());
    ~AcDbPolyFaceMeshVertex() override;
};

// A corner of a mesh of rows and columns.
class SG_API AcDbPolygonMeshVertex : public sg::model::MeshVertex {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPolygonMeshVertex)
    explicit AcDbPolygonMeshVertex(const AcGePoint3d& position = AcGePoint3d());
    ~AcDbPolygonMeshVertex() override;
};

// A face of a mesh of single faces: up to four numbers of its vertices, from 1 on, and 0 behind the
// last. The edge from a vertex whose number is negative is not shown.
class SG_API AcDbFaceRecord : public AcDbVertex {
  public:
    ACRX_DECLARE_MEMBERS(AcDbFaceRecord)
    AcDbFaceRecord();
    AcDbFaceRecord(int16_t v0, int16_t v1, int16_t v2, int16_t v3);
    ~AcDbFaceRecord() override;

    const std::array<int16_t, 4>& vertices() const { return vertices_; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    std::array<int16_t, 4> vertices_{};
};
