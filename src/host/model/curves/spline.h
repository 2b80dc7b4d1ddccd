#pragma once

#include "host/model/curves/math/nurbs.h"
#include "platform/db/curve.h"

// A B-spline, given by control points, or by points that it goes through, from which the control
// points follow. Its parameters are those of its knots. Changing control points forgets the points
// that it went through.
class SG_API AcDbSpline : public AcDbCurve {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSpline)
    AcDbSpline();  // without points: nothing can be asked of it
    // Through the points; a zero tangent leaves the curve free at that end. The order is that of a
    // cubic one, 4, always; the tolerance is kept and the points are met exactly.
    explicit AcDbSpline(const AcGePoint3dArray& fitPoints, int order = 4, double fitTolerance = 0);
    AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
               const AcGeVector3d& endTangent, int order = 4, double fitTolerance = 0);
    AcDbSpline(int degree, bool rational, bool closed, bool periodic,
               const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
               const AcGeDoubleArray& weights);
    ~AcDbSpline() override;

    int degree() const { return curve_.degree; }
    bool isRational() const { return curve_.isRational(); }
    int numControlPoints() const { return static_cast<int>(curve_.controls.size()); }
    Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;  // eInvalidIndex
    Acad::ErrorStatus setControlPointAt(int index, const AcGePoint3d& point);
    double weightAt(int index) const;  // 1 where there is none
    Acad::ErrorStatus setWeightAt(int index, double weight);
    Acad::ErrorStatus getNurbsData(int& degree, bool& rational, bool& closed, bool& periodic,
                                   AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots,
                                   AcGeDoubleArray& weights) const;
    // eInvalidInput when the data makes no curve; nothing is changed then.
    Acad::ErrorStatus setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                   const AcGePoint3dArray& controlPoints,
                                   const AcGeDoubleArray& knots, const AcGeDoubleArray& weights);

    bool hasFitData() const { return !fitPoints_.empty(); }
    int numFitPoints() const { return static_cast<int>(fitPoints_.size()); }
    Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setFitPointAt(int index, const AcGePoint3d& point);
    Acad::ErrorStatus getFitTangents(AcGeVector3d& start, AcGeVector3d& end) const;
    Acad::ErrorStatus setFitTangents(const AcGeVector3d& start, const AcGeVector3d& end);
    double fitTolerance() const { return fitTolerance_; }
    Acad::ErrorStatus purgeFitData();

    // Splines; see sg::model::offsetSmoothly.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus reverseCurve() override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subShape(sg::model::CurveShape& shape) const override;
    AcDbCurve* subPart(double from, double to) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    // Grips and stretch points: the points that it goes through, else the control points.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    bool
    refit();  // the curve through the fit points; false, and nothing changed, when there is none
    std::vector<AcGePoint3d>& shapingPoints() {
        return fitPoints_.empty() ? curve_.controls : fitPoints_;
    }
    Acad::ErrorStatus movePoints(const AcDbIntArray& indices, const AcGeVector3d& offset);
    struct Groups;
    // As files have it: by its control points or by its fit points.
    bool isMadeByFit() const;
    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);
    void writeControls(AcDbDwgFiler& filer) const;
    void readControls(AcDbDwgFiler& filer);
    void writeFit(AcDbDwgFiler& filer) const;
    void readFit(AcDbDwgFiler& filer);

    sg::model::Nurbs curve_;
    std::vector<AcGePoint3d> fitPoints_;
    AcGeVector3d startTangent_, endTangent_;
    double fitTolerance_ = 0;
    bool closed_ = false;
    bool periodic_ = false;
};
