#include <Geom2dAPI_ExtremaCurveCurve.hxx>
#include <Geom2dAPI_InterCurveCurve.hxx>
#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_Ellipse.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Standard_Failure.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColgp_Array1OfPnt2d.hxx>
#include <numbers>

#include "base/export.h"
#include "host/model/curves/geometry_kernel.h"

// The shared library over Open CASCADE; nothing else of the host links it.

namespace sg::geometry {

namespace {

using model::PlaneCurve;
using Parameters = std::vector<std::pair<double, double>>;

Handle(Geom2d_Curve) splineOf(const PlaneCurve& curve) {
    const int count = static_cast<int>(curve.controls.size() / 2);
    TColgp_Array1OfPnt2d poles(1, count);
    TColStd_Array1OfReal weights(1, count);
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<size_t>(i);
        poles(i + 1) = gp_Pnt2d(curve.controls[2 * at], curve.controls[2 * at + 1]);
        weights(i + 1) = curve.weights.empty() ? 1 : curve.weights[at];
    }
    std::vector<double> knots;
    std::vector<int> counts;
    for (const double knot : curve.knots) {
        if (knots.empty() || knot > knots.back()) {
            knots.push_back(knot);
            counts.push_back(0);
        }
        ++counts.back();
    }
    const int different = static_cast<int>(knots.size());
    TColStd_Array1OfReal knotArray(1, different);
    TColStd_Array1OfInteger countArray(1, different);
    for (int i = 0; i < different; ++i) {
        knotArray(i + 1) = knots[static_cast<size_t>(i)];
        countArray(i + 1) = counts[static_cast<size_t>(i)];
    }
    if (curve.weights.empty()) {
        return new Geom2d_BSplineCurve(poles, knotArray, countArray, curve.degree);
    }
    return new Geom2d_BSplineCurve(poles, weights, knotArray, countArray, curve.degree);
}

Handle(Geom2d_Curve) basisOf(const PlaneCurve& curve) {
    const gp_Pnt2d origin(curve.origin[0], curve.origin[1]);
    if (curve.kind == PlaneCurve::Kind::Spline) return splineOf(curve);
    const gp_Vec2d axis(curve.axis[0], curve.axis[1]);
    if (curve.kind == PlaneCurve::Kind::Line) return new Geom2d_Line(origin, gp_Dir2d(axis));
    return new Geom2d_Ellipse(gp_Ax2d(origin, gp_Dir2d(axis)), axis.Magnitude(), curve.minorRadius,
                              !curve.clockwise);
}

Handle(Geom2d_Curve) curveOf(const PlaneCurve& curve) {
    const Handle(Geom2d_Curve) basis = basisOf(curve);
    const bool whole = curve.kind == PlaneCurve::Kind::Ellipse &&
                       curve.last - curve.first >= 2 * std::numbers::pi * (1 - 1e-14);
    if (curve.kind == PlaneCurve::Kind::Spline || whole) return basis;
    return new Geom2d_TrimmedCurve(basis, curve.first, curve.last);
}

void appendCrossings(const Handle(Geom2d_Curve) & a, const Handle(Geom2d_Curve) & b,
                     double tolerance, Parameters& result) {
    const Geom2dAPI_InterCurveCurve found(a, b, tolerance);
    const Geom2dInt_GInter& all = found.Intersector();
    for (int i = 1; i <= all.NbPoints(); ++i) {
        const IntRes2d_IntersectionPoint& point = all.Point(i);
        result.emplace_back(point.ParamOnFirst(), point.ParamOnSecond());
    }
    for (int i = 1; i <= all.NbSegments(); ++i) {
        const IntRes2d_IntersectionSegment& shared = all.Segment(i);
        for (const bool first : {true, false}) {
            if (first ? !shared.HasFirstPoint() : !shared.HasLastPoint()) continue;
            const IntRes2d_IntersectionPoint& point =
                first ? shared.FirstPoint() : shared.LastPoint();
            result.emplace_back(point.ParamOnFirst(), point.ParamOnSecond());
        }
    }
}

// Places where the distance is least, for curves that touch and do not cross.
void appendTouches(const Handle(Geom2d_Curve) & a, const Handle(Geom2d_Curve) & b, double tolerance,
                   Parameters& result) {
    const Geom2dAPI_ExtremaCurveCurve found(a, b, a->FirstParameter(), a->LastParameter(),
                                            b->FirstParameter(), b->LastParameter());
    for (int i = 1; i <= found.NbExtrema(); ++i) {
        if (found.Distance(i) > tolerance) continue;
        double onA = 0;
        double onB = 0;
        found.Parameters(i, onA, onB);
        result.emplace_back(onA, onB);
    }
}

class Kernel : public model::GeometryKernel {
  public:
    Parameters intersect(const PlaneCurve& a, const PlaneCurve& b,
                         double tolerance) const override {
        Parameters result;
        // Each way is tried for itself: the library gives up on some curves by an exception.
        try {
            appendCrossings(curveOf(a), curveOf(b), tolerance, result);
        } catch (const Standard_Failure&) {
        }
        try {
            appendTouches(curveOf(a), curveOf(b), tolerance * 1e3, result);
        } catch (const Standard_Failure&) {
        }
        return result;
    }
};

}  // namespace

}  // namespace sg::geometry

extern "C" SG_API const sg::model::GeometryKernel* swiftgateGeometryKernel() {
    static const sg::geometry::Kernel kernel;
    return &kernel;
}
