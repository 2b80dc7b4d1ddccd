#pragma once

#include "host/model/curves/math/piece.h"
#include "platform/db/curve.h"

// An ellipse or an arc of one, counter-clockwise seen against its normal. Its parameter t gives the
// point center + cos(t) major axis + sin(t) minor axis, from the start parameter on; the end's may
// be above 2 pi.
class SG_API AcDbEllipse : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbEllipse)
    AcDbEllipse();  // a whole one, twice as long as high
    // The angles are those seen from the centre, from the major axis on.
    AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& normal,
                const AcGeVector3d& majorAxis, double radiusRatio, double startAngle = 0,
                double endAngle = 6.28318530717958647692);
    ~AcDbEllipse() override;

    AcGePoint3d center() const { return center_; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& center) { return assign(center_, center); }
    AcGeVector3d normal() const { return normal_; }
    AcGeVector3d majorAxis() const { return major_; }
    AcGeVector3d minorAxis() const { return normal_.crossProduct(major_) * ratio_; }
    double radiusRatio() const { return ratio_; }    // of the minor axis to the major one
    Acad::ErrorStatus setRadiusRatio(double ratio);  // eInvalidInput: not above 0, or above 1
    // eInvalidInput: the major axis is zero, does not stand at a right angle on the normal, or the
    // ratio is out of range.
    Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& normal,
                          const AcGeVector3d& majorAxis, double radiusRatio, double startAngle = 0,
                          double endAngle = 6.28318530717958647692);
    double startParam() const { return start_; }  // in [0, 2 pi)
    double endParam() const { return end_; }      // above the start, by a whole turn at most
    Acad::ErrorStatus setStartParam(double parameter);
    Acad::ErrorStatus setEndParam(double parameter);
    double startAngle() const { return angleAtParam(start_); }
    double endAngle() const { return angleAtParam(end_); }
    double paramAtAngle(double angle) const;
    double angleAtParam(double parameter) const;
    bool isWhole() const;

    // A new ellipse of what the transform makes of a circle's arc, with the properties of the arc;
    // the caller owns it. eCannotScaleNonUniformly, and null, when that is no ellipse.
    static Acad::ErrorStatus copyOfArc(const AcDbCurve& arc, const AcGeMatrix3d& transform,
                                       AcDbEntity*& copy);

    // Splines; see sg::model::offsetSmoothly.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus reverseCurve() override;  // turns the normal round
    Acad::ErrorStatus extend(double parameter) override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    // eCannotScaleNonUniformly only for what flattens it.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    // Grips: centre, the ends of the major axis and of the minor one, and those of an arc.
    // Stretch points: the centre.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    // The ellipse of a conic, on the side of this normal; false when it is flat.
    bool setFrom(const sg::model::Piece& conic, const AcGeVector3d& side);
    void setParams(double start, double end);

    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGeVector3d major_ = AcGeVector3d::kXAxis;
    double ratio_ = 0.5;
    double start_ = 0;
    double end_ = 6.28318530717958647692;
};
