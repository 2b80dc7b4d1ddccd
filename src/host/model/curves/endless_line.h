#pragma once

#include "platform/db/curve.h"

namespace sg::model {

// What rays and construction lines have in common: a point and a direction, and parameters that
// are distances from the point.
class SG_API EndlessLine : public AcDbCurve {
  public:
    ~EndlessLine() override;

    AcGePoint3d basePoint() const { return base_; }
    Acad::ErrorStatus setBasePoint(const AcGePoint3d& point) { return assign(base_, point); }
    AcGeVector3d unitDir() const { return direction_; }
    Acad::ErrorStatus setUnitDir(const AcGeVector3d& direction);  // eInvalidInput: the zero vector
    AcGePoint3d secondPoint() const { return base_ + direction_; }
    Acad::ErrorStatus setSecondPoint(const AcGePoint3d& point);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    EndlessLine();  // along the x axis
    EndlessLine(const AcGePoint3d& basePoint, const AcGeVector3d& direction);

    virtual bool isEndlessBackward() const = 0;

    bool subShape(CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    // Grips: the base point, which moves the whole, and on each side that the line goes on to a
    // point that turns it. Stretch points: the base point.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    AcGePoint3d base_;
    AcGeVector3d direction_ = AcGeVector3d::kXAxis;
};

}  // namespace sg::model
