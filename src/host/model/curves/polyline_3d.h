#pragma once

#include <memory>

#include "platform/db/polyline_2d.h"

namespace AcDb {

enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };

enum Vertex3dType {
    k3dSimpleVertex = 0,
    k3dControlVertex = 1,  // of the frame of a spline-fit polyline; not drawn
    k3dFitVertex = 2,      // made by spline fitting
};

}  // namespace AcDb

// A vertex of a 3D polyline.
class SG_API AcDb3dPolylineVertex : public AcDbVertex {
  public:
    ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex)
    AcDb3dPolylineVertex();
    explicit AcDb3dPolylineVertex(const AcGePoint3d& position);
    ~AcDb3dPolylineVertex() override;

    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& point) { return assign(position_, point); }
    AcDb::Vertex3dType vertexType() const { return type_; }
    Acad::ErrorStatus setVertexType(AcDb::Vertex3dType type) { return assign(type_, type); }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    AcGePoint3d position_;
    AcDb::Vertex3dType type_ = AcDb::k3dSimpleVertex;
};

// A polyline of straight segments in space, perhaps fitted to a B-spline. Parameters are those of
// AcDbPolyline, over the vertices that are drawn.
class SG_API AcDb3dPolyline : public sg::model::VertexCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDb3dPolyline)
    AcDb3dPolyline();
    AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& points, bool closed = false);
    ~AcDb3dPolyline() override;

    AcDb::Poly3dType polyType() const { return type_; }
    Acad::ErrorStatus setPolyType(AcDb::Poly3dType type) { return assign(type_, type); }
    Acad::ErrorStatus convertToPolyType(AcDb::Poly3dType type);
    // As those of AcDb2dPolyline.
    Acad::ErrorStatus splineFit();
    Acad::ErrorStatus splineFit(AcDb::Poly3dType splineType, int16_t splineSegments);
    Acad::ErrorStatus straighten();

    bool isClosed() const override { return closed_; }
    Acad::ErrorStatus makeClosed() { return assign(closed_, true); }
    Acad::ErrorStatus makeOpen() { return assign(closed_, false); }
    void setClosed(bool closed) { static_cast<void>(assign(closed_, closed)); }

    Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex* vertex);
    Acad::ErrorStatus insertVertexAt(AcDbObjectId& id, AcDbObjectId after,
                                     AcDb3dPolylineVertex* vertex);

    Acad::ErrorStatus reverseCurve() override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    std::unique_ptr<AcDbEntity> newVertex(uint8_t kind) const override;
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    // Grips and stretch points: the vertices; fitted ones only where they have no frame.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;
    void subList() const override;

  private:
    std::vector<AcGePoint3d> drawnPoints() const;

    AcDb::Poly3dType type_ = AcDb::k3dSimplePoly;
    bool closed_ = false;
};
