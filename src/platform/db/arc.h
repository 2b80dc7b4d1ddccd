#pragma once

#include "platform/db/curve.h"

// An arc of a circle, counter-clockwise seen against its normal. Angles are measured in its plane
// from that plane's x axis; its parameters are angles from the start angle on, so that the end's
// may be above 2 pi. An arc that ends at the angle where it starts is a whole turn.
class SG_API AcDbArc : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbArc)
    AcDbArc();  // of radius 1 at the origin
    AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle);
    AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
            double endAngle);
    ~AcDbArc() override;

    AcGePoint3d center() const { return center_; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& center) { return assign(center_, center); }
    double radius() const { return radius_; }
    Acad::ErrorStatus setRadius(double radius);     // eInvalidInput: below 0
    double startAngle() const { return start_; }    // in [0, 2 pi)
    double endAngle() const { return end_; }        // the same
    Acad::ErrorStatus setStartAngle(double angle);  // any angle
    Acad::ErrorStatus setEndAngle(double angle);
    double totalAngle() const;  // above 0
    double length() const { return radius_ * totalAngle(); }
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness) { return assign(thickness_, thickness); }

    // Turns the normal round.
    Acad::ErrorStatus reverseCurve() override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus extend(double parameter) override;  // at most to a whole turn

    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    // eCannotScaleNonUniformly for what would make it an ellipse; the copy is that ellipse's arc.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform,
                                            AcDbEntity*& copy) const override;
    // Grips: start, end, middle, centre. An end or the middle moves with the other two kept on the
    // arc.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    // Stretch points: start, end. The height of the arc over its chord stays.
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    AcGePoint3d pointAt(double angle) const;
    // The arc through three points of its plane; false when they lie on a line.
    bool setThrough(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end);

    AcGePoint3d center_;
    double radius_ = 1;
    double start_ = 0;
    double end_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
};
