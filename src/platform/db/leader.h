#pragma once

#include <vector>

#include "platform/db/curve.h"

// A line of straight or curved pieces from an arrow to an annotation.
class SG_API AcDbLeader : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLeader)
    AcDbLeader();
    ~AcDbLeader() override;

    // The first vertex, at the arrow, lays down the plane together with the normal; later ones are
    // projected onto it. A vertex at the place of the one before it is left out, and answered
    // false.
    bool appendVertex(const AcGePoint3d& point);
    void removeLastVertex();
    int numVertices() const { return static_cast<int>(vertices_.size()); }
    AcGePoint3d vertexAt(int index) const;
    bool setVertexAt(int index, const AcGePoint3d& point);
    AcGePoint3d firstVertex() const { return vertexAt(0); }
    AcGePoint3d lastVertex() const { return vertexAt(numVertices() - 1); }

    bool isSplined() const { return splined_; }
    void setToSpline();
    void setToStraight();
    bool hasArrowHead() const { return arrow_; }
    void enableArrowHead();
    void disableArrowHead();
    bool hasHookLine() const { return hookLine_; }
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    AcDbObjectId dimensionStyle() const { return dimStyle_; }
    void setDimensionStyle(AcDbObjectId style);
    AcDbObjectId annotationObjId() const { return annotation_; }
    Acad::ErrorStatus attachAnnotation(AcDbObjectId annotation);
    Acad::ErrorStatus detachAnnotation();
    // What the arrow and hook line are drawn with: the dimension style's values times its scale.
    double dimasz() const;
    double dimscale() const;

    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
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
    double dimensionValue(const wchar_t* name) const;
    AcGePoint3d inPlane(const AcGePoint3d& point) const;
    void takeField(AcDbDxfFiler* filer, const resbuf& group);

    std::vector<AcGePoint3d> vertices_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGeVector3d horizontal_ = AcGeVector3d::kXAxis;
    AcGeVector3d blockOffset_, annotationOffset_;
    AcDbHardPointerId dimStyle_;
    AcDbHardPointerId annotation_;
    int16_t annotationKind_ = 3;  // 0 text, 1 tolerance, 2 block, 3 none
    bool arrow_ = true;
    bool splined_ = false;
    bool hookLine_ = false;
    bool hookLineAlongX_ = false;
    double textHeight_ = 1;
    double textWidth_ = 1;
    int16_t color_ = 0;
};
