#pragma once

#include "platform/db/curve.h"

// A circle. Its parameters are angles from 0 to 2 pi, from the x axis of its plane.
class SG_API AcDbCircle : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbCircle)
    AcDbCircle();  // of radius 1 at the origin
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);
    ~AcDbCircle() override;

    AcGePoint3d center() const { return center_; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& center) { return assign(center_, center); }
    double radius() const { return radius_; }
    Acad::ErrorStatus setRadius(double radius);  // eInvalidInput: below 0
    double diameter() const { return 2 * radius_; }
    double circumference() const;
    Acad::ErrorStatus setCircumference(double circumference);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness) { return assign(thickness_, thickness); }

    Acad::ErrorStatus reverseCurve() override;  // eNotApplicable: its start is its plane's x axis
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;

    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    // eCannotScaleNonUniformly for what would make it an ellipse; the copy is that ellipse.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform,
                                            AcDbEntity*& copy) const override;
    // Grips: the centre and the quadrants from the x axis on; a quadrant changes the radius.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;  // the centre
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    AcGePoint3d center_;
    double radius_ = 1;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
};
