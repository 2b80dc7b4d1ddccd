#pragma once

#include <memory>

#include "platform/db/vertex_owner.h"

namespace sg::model {
struct BulgePath;
}

namespace AcDb {

enum Poly2dType {
    k2dSimplePoly = 0,
    k2dFitCurvePoly = 1,
    k2dQuadSplinePoly = 2,
    k2dCubicSplinePoly = 3,
};

enum Vertex2dType {
    k2dVertex = 0,
    k2dSplineCtlVertex = 1,  // of the frame of a spline-fit polyline; not drawn
    k2dSplineFitVertex = 2,  // made by spline fitting
    k2dCurveFitVertex = 3,   // made by curve fitting
};

}  // namespace AcDb

// A vertex of a polyline of the older kinds.
class SG_API AcDbVertex : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbVertex)
    ~AcDbVertex() override;

    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    AcDbVertex();

    template <class Value>
    Acad::ErrorStatus assign(Value& member, const Value& value) {
        assertWriteEnabled();
        member = value;
        return Acad::eOk;
    }
};

// A vertex of a 2D polyline, in the coordinates of the polyline's plane.
class SG_API AcDb2dVertex : public AcDbVertex {
  public:
    ACRX_DECLARE_MEMBERS(AcDb2dVertex)
    AcDb2dVertex();
    explicit AcDb2dVertex(const AcGePoint3d& position, double bulge = 0, double startWidth = 0,
                          double endWidth = 0, double tangent = 0);
    ~AcDb2dVertex() override;

    AcDb::Vertex2dType vertexType() const { return type_; }
    Acad::ErrorStatus setVertexType(AcDb::Vertex2dType type) { return assign(type_, type); }
    AcGePoint3d position() const { return position_; }  // z is the polyline's elevation
    Acad::ErrorStatus setPosition(const AcGePoint3d& point) { return assign(position_, point); }
    double bulge() const { return bulge_; }  // of the segment behind it
    Acad::ErrorStatus setBulge(double bulge) { return assign(bulge_, bulge); }
    double startWidth() const { return startWidth_; }
    Acad::ErrorStatus setStartWidth(double width) { return assign(startWidth_, width); }
    double endWidth() const { return endWidth_; }
    Acad::ErrorStatus setEndWidth(double width) { return assign(endWidth_, width); }
    // The direction that curve fitting gives the curve here, when it is used.
    double tangent() const { return tangent_; }
    Acad::ErrorStatus setTangent(double tangent) { return assign(tangent_, tangent); }
    bool isTangentUsed() const { return tangentUsed_; }
    Acad::ErrorStatus useTangent() { return assign(tangentUsed_, true); }
    Acad::ErrorStatus ignoreTangent() { return assign(tangentUsed_, false); }
    int vertexIdentifier() const { return identifier_; }
    Acad::ErrorStatus setVertexIdentifier(int identifier) {
        return assign(identifier_, static_cast<int32_t>(identifier));
    }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    AcGePoint3d position_;
    double bulge_ = 0;
    double startWidth_ = 0;
    double endWidth_ = 0;
    double tangent_ = 0;
    int32_t identifier_ = 0;
    AcDb::Vertex2dType type_ = AcDb::k2dVertex;
    bool tangentUsed_ = false;
};

// A polyline in a plane with vertices that are entities, of straight segments and arcs, curve-fit
// or spline-fit. Parameters are as those of AcDbPolyline, over the vertices that are drawn.
class SG_API AcDb2dPolyline : public sg::model::VertexCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDb2dPolyline)
    AcDb2dPolyline();
    // With vertices at the points; widths and bulges where given, one for each point.
    AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& points, double elevation = 0,
                   bool closed = false, double defaultStartWidth = 0, double defaultEndWidth = 0,
                   const AcGeDoubleArray* bulges = nullptr);
    ~AcDb2dPolyline() override;

    AcDb::Poly2dType polyType() const { return type_; }
    // Names the type only; the vertices stay.
    Acad::ErrorStatus setPolyType(AcDb::Poly2dType type) { return assign(type_, type); }
    // Fits or straightens, as the type asks.
    Acad::ErrorStatus convertToPolyType(AcDb::Poly2dType type);
    // Puts an arc pair between each two vertices, which the curve goes through smoothly, along the
    // tangents that they use. eDegenerateGeometry with less than two vertices; so for splineFit().
    Acad::ErrorStatus curveFit();
    // Makes the vertices the frame of a B-spline, drawn as straight segments. Without arguments the
    // type and the segments between two vertices are the drawing's SPLINETYPE and SPLINESEGS; below
    // 0, arcs join the spline's points.
    Acad::ErrorStatus splineFit();
    Acad::ErrorStatus splineFit(AcDb::Poly2dType splineType, int16_t splineSegments);
    // Takes away what fitting made, and all bulges.
    Acad::ErrorStatus straighten();

    bool isClosed() const override { return closed_; }
    Acad::ErrorStatus makeClosed() { return assign(closed_, true); }
    Acad::ErrorStatus makeOpen() { return assign(closed_, false); }
    void setClosed(bool closed) { static_cast<void>(assign(closed_, closed)); }
    double defaultStartWidth() const { return startWidth_; }
    Acad::ErrorStatus setDefaultStartWidth(double width) { return assign(startWidth_, width); }
    double defaultEndWidth() const { return endWidth_; }
    Acad::ErrorStatus setDefaultEndWidth(double width) { return assign(endWidth_, width); }
    bool isLinetypeGenerationOn() const { return plinegen_; }
    Acad::ErrorStatus setLinetypeGenerationOn() { return assign(plinegen_, true); }
    Acad::ErrorStatus setLinetypeGenerationOff() { return assign(plinegen_, false); }
    double elevation() const { return elevation_; }
    Acad::ErrorStatus setElevation(double elevation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness) { return assign(thickness_, thickness); }

    // The polyline takes the vertex over; in a database it gets an id and stays open.
    Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex);
    Acad::ErrorStatus appendVertex(AcDb2dVertex* vertex);
    Acad::ErrorStatus insertVertexAt(AcDbObjectId& id, AcDbObjectId after, AcDb2dVertex* vertex);
    Acad::ErrorStatus openVertex(AcDb2dVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) const {
        return acdbOpenObject(vertex, id, mode, openErased);
    }
    AcGePoint3d vertexPosition(const AcDb2dVertex& vertex) const;  // in the world

    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus reverseCurve() override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    std::unique_ptr<AcDbEntity> newVertex(uint8_t kind) const override;
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    // eCannotScaleNonUniformly unless the plane is scaled alike in all directions.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;  // with the widths
    // Grips and stretch points: the vertices; fitted ones only where they have no frame.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    void subList() const override;

  private:
    sg::model::BulgePath path() const;
    AcDb2dPolyline* likeThis(const sg::model::BulgePath& path) const;
    // The vertices without those that fitting made.
    std::vector<sg::model::VertexSlot> takeOriginals();
    std::vector<AcGePoint2d> positions() const;  // of all vertices, in the plane

    double startWidth_ = 0;
    double endWidth_ = 0;
    double elevation_ = 0;
    double thickness_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcDb::Poly2dType type_ = AcDb::k2dSimplePoly;
    bool closed_ = false;
    bool plinegen_ = false;
};
