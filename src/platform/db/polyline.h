#pragma once

#include <vector>

#include "platform/db/curve.h"
#include "platform/ge/point2d.h"

namespace sg::model {

struct BulgePath;

// A vertex and the segment behind it. The bulge is the tangent of a quarter of the segment's angle,
// above 0 counter-clockwise and 0 for a straight segment.
struct BulgeVertex {
    AcGePoint2d point;
    double bulge = 0;
    double startWidth = 0;
    double endWidth = 0;

    friend bool operator==(const BulgeVertex& a, const BulgeVertex& b) {
        return a.point.x == b.point.x && a.point.y == b.point.y && a.bulge == b.bulge &&
               a.startWidth == b.startWidth && a.endWidth == b.endWidth;
    }
};

}  // namespace sg::model

// A polyline of straight segments and arcs in one plane. Points with two coordinates are in the
// plane's coordinates, at its elevation. A parameter is a vertex index plus the fraction of the way
// to the next vertex.
class SG_API AcDbPolyline : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPolyline)
    AcDbPolyline();
    explicit AcDbPolyline(unsigned int expectedVertices);
    ~AcDbPolyline() override;

    enum SegType { kLine, kArc, kCoincident, kPoint, kEmpty };

    unsigned int numVerts() const { return static_cast<unsigned int>(vertices_.size()); }
    // For a wrong index the following answer eInvalidIndex.
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& point) const;
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& point) const;  // in the world
    Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& point);
    Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
    Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
    Acad::ErrorStatus getWidthsAt(unsigned int index, double& start, double& end) const;
    Acad::ErrorStatus setWidthsAt(unsigned int index, double start, double end);
    Acad::ErrorStatus getVertexIdentifierAt(unsigned int index, int& identifier) const;
    Acad::ErrorStatus setVertexIdentifierAt(unsigned int index, int identifier);
    // Before the vertex that has the index, or behind the last. A width below 0 stands for 0.
    Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge = 0,
                                  double startWidth = -1, double endWidth = -1);
    Acad::ErrorStatus removeVertexAt(unsigned int index);
    // Keeps the first vertices, or makes as many at the origin.
    void reset(bool reuse, unsigned int count);
    // What follows the vertex: kEmpty for an index without a segment.
    SegType segType(unsigned int index) const;

    void setClosed(bool closed);
    bool hasPlinegen() const { return plinegen_; }  // the linetype runs on through the vertices
    void setPlinegen(bool plinegen) { static_cast<void>(assign(plinegen_, plinegen)); }
    bool isOnlyLines() const { return !hasBulges(); }
    bool hasBulges() const;
    bool hasWidth() const;
    Acad::ErrorStatus getConstantWidth(double& width) const;  // eInvalidInput: they differ
    Acad::ErrorStatus setConstantWidth(double width);         // eInvalidInput: below 0
    double elevation() const { return elevation_; }
    Acad::ErrorStatus setElevation(double elevation) { return assign(elevation_, elevation); }
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness) { return assign(thickness_, thickness); }

    bool isClosed() const override { return closed_; }
    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus reverseCurve() override;
    // Without what would come nearer to the polyline than the distance; eInvalidInput when nothing
    // is left.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus extend(double parameter) override;  // a straight first or last segment

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    // eCannotScaleNonUniformly unless the plane is scaled alike in all directions.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;  // with the widths
    // Grips: the vertices, then the middles of the segments. A straight segment's middle moves the
    // segment, an arc's bends it. Stretch points: the vertices.
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
    void setPath(const sg::model::BulgePath& path);
    AcDbPolyline* likeThis(const sg::model::BulgePath& path) const;

    std::vector<sg::model::BulgeVertex> vertices_;
    std::vector<int32_t> identifiers_;  // as many as there are vertices, or none: all are 0
    double elevation_ = 0;
    double thickness_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    bool closed_ = false;
    bool plinegen_ = false;
};
