#include "host/model/curves/spline.h"

#include <algorithm>

#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/smooth_offset.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, 0, 0, L"SPLINE", L"")

AcDbSpline::AcDbSpline() = default;
AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, int order, double fitTolerance)
    : AcDbSpline(fitPoints, AcGeVector3d(), AcGeVector3d(), order, fitTolerance) {}
AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                       const AcGeVector3d& endTangent, int, double fitTolerance)
    : fitPoints_(fitPoints.begin(), fitPoints.end()),
      startTangent_(startTangent),
      endTangent_(endTangent),
      fitTolerance_(fitTolerance) {
    if (!refit()) fitPoints_.clear();
}
AcDbSpline::AcDbSpline(int degree, bool rational, bool closed, bool periodic,
                       const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                       const AcGeDoubleArray& weights) {
    setNurbsData(degree, rational, closed, periodic, controlPoints, knots, weights);
}
AcDbSpline::~AcDbSpline() = default;

bool AcDbSpline::refit() {
    std::vector<AcGePoint3d> points;
    for (const AcGePoint3d& point : fitPoints_) {
        if (points.empty() || !point.isEqualTo(points.back())) points.push_back(point);
    }
    if (points.size() < 2) return false;
    curve_ = interpolate(points, startTangent_, endTangent_);
    return true;
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
    point = curve_.controls[static_cast<size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setControlPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
    purgeFitData();
    return assign(curve_.controls[static_cast<size_t>(index)], point);
}

double AcDbSpline::weightAt(int index) const {
    const auto at = static_cast<size_t>(index);
    return at < curve_.weights.size() ? curve_.weights[at] : 1;
}

Acad::ErrorStatus AcDbSpline::setWeightAt(int index, double weight) {
    if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
    if (!(weight > 0)) return Acad::eInvalidInput;
    purgeFitData();
    if (!isRational()) curve_.weights.assign(curve_.controls.size(), 1);
    return assign(curve_.weights[static_cast<size_t>(index)], weight);
}

Acad::ErrorStatus AcDbSpline::getNurbsData(int& degree, bool& rational, bool& closed,
                                           bool& periodic, AcGePoint3dArray& controlPoints,
                                           AcGeDoubleArray& knots, AcGeDoubleArray& weights) const {
    assertReadEnabled();
    degree = curve_.degree;
    rational = curve_.isRational();
    closed = closed_;
    periodic = periodic_;
    for (const AcGePoint3d& point : curve_.controls)
        controlPoints.append(point);
    for (const double knot : curve_.knots)
        knots.append(knot);
    for (const double weight : curve_.weights)
        weights.append(weight);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                           const AcGePoint3dArray& controlPoints,
                                           const AcGeDoubleArray& knots,
                                           const AcGeDoubleArray& weights) {
    assertWriteEnabled();
    Nurbs curve;
    curve.degree = degree;
    curve.controls.assign(controlPoints.begin(), controlPoints.end());
    curve.knots.assign(knots.begin(), knots.end());
    if (rational) curve.weights.assign(weights.begin(), weights.end());
    if (!curve.isValid()) return Acad::eInvalidInput;
    curve_ = std::move(curve);
    closed_ = closed;
    periodic_ = periodic;
    return purgeFitData();
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
    point = fitPoints_[static_cast<size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
    AcDbIntArray only;
    only.append(index);
    return movePoints(only, point - fitPoints_[static_cast<size_t>(index)]);
}

Acad::ErrorStatus AcDbSpline::getFitTangents(AcGeVector3d& start, AcGeVector3d& end) const {
    assertReadEnabled();
    if (!hasFitData()) return Acad::eNotApplicable;
    start = startTangent_;
    end = endTangent_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitTangents(const AcGeVector3d& start, const AcGeVector3d& end) {
    if (!hasFitData()) return Acad::eNotApplicable;
    assertWriteEnabled();
    startTangent_ = start;
    endTangent_ = end;
    refit();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::purgeFitData() {
    assertWriteEnabled();
    fitPoints_.clear();
    startTangent_ = AcGeVector3d();
    endTangent_ = AcGeVector3d();
    return Acad::eOk;
}

bool AcDbSpline::subShape(CurveShape& shape) const {
    if (!curve_.isValid()) return false;
    shape.spans.emplace_back(Piece::nurbs(curve_));
    const Piece& piece = shape.spans.front().piece;
    shape.closed = piece.start().isEqualTo(piece.end()) && curve_.controls.size() > 2;
    shape.findPlane();
    return true;
}

AcDbCurve* AcDbSpline::subPart(double from, double to) const {
    auto* const part = new AcDbSpline;
    part->curve_ = curve_.part(from, to);
    return part;
}

Acad::ErrorStatus AcDbSpline::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    return offsetSmoothly(*this, distance, curves);
}

Acad::ErrorStatus AcDbSpline::reverseCurve() {
    assertWriteEnabled();
    if (!curve_.isValid()) return Acad::eDegenerateGeometry;
    curve_ = curve_.reversed();
    std::reverse(fitPoints_.begin(), fitPoints_.end());
    std::swap(startTangent_, endTangent_);
    startTangent_.negate();
    endTangent_.negate();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    curve_ = curve_.transformed(transform);
    for (AcGePoint3d& point : fitPoints_)
        point = transform * point;
    startTangent_ = transform * startTangent_;
    endTangent_ = transform * endTangent_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::movePoints(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::vector<AcGePoint3d>& points = shapingPoints();
    const std::vector<AcGePoint3d> before = points;
    for (size_t i = 0; i < points.size(); ++i) {
        if (indices.contains(static_cast<int>(i))) points[i] += offset;
    }
    if (!hasFitData() || refit()) return Acad::eOk;
    points = before;
    return Acad::eDegenerateGeometry;
}

Acad::ErrorStatus AcDbSpline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                               AcDbIntArray&) const {
    return subGetStretchPoints(points);
}

Acad::ErrorStatus AcDbSpline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    return movePoints(indices, offset);
}

Acad::ErrorStatus AcDbSpline::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    for (const AcGePoint3d& point : fitPoints_.empty() ? curve_.controls : fitPoints_) {
        points.append(point);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    return movePoints(indices, offset);
}

void AcDbSpline::subList() const {
    AcDbCurve::subList();
    listNumber(L"Order:", curve_.degree + 1);
    listText(L"Properties:", isRational() ? L"Rational" : L"Non-Rational");
    if (curve_.isValid()) {
        listNumber(L"Length:", Piece::nurbs(curve_).length(curve_.first(), curve_.last()));
    }
    for (const AcGePoint3d& point : curve_.controls)
        listPoint(L"Control", point);
    for (const AcGePoint3d& point : fitPoints_)
        listPoint(L"Fit", point);
}
