#include "host/seam/entity_lists.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/lisp_points.h"
#include "platform/db/curve.h"

// AutoLISP's functions on curves. Points and directions are in world coordinates; what a curve has
// no answer to is nil.

namespace sg {
namespace {

using Acad::eOk;
using Acad::ErrorStatus;
using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::Value;

// A curve, open for reading. Throws "bad argument value" for what is none.
class Curve {
  public:
    Curve(Interpreter& in, Value name) {
        if (acdbOpenObject(curve_, entityArgument(in, name)) != eOk) {
            in.badValue(L"curve " + in.toQuotedText(name));
        }
    }
    ~Curve() { curve_->close(); }
    Curve(const Curve&) = delete;
    Curve& operator=(const Curve&) = delete;

    const AcDbCurve& operator*() const { return *curve_; }
    const AcDbCurve* operator->() const { return curve_; }

  private:
    AcDbCurve* curve_ = nullptr;
};

Value listOf(Interpreter& in, const AcGeVector3d& vector) {
    return pointValue(in, AcGePoint3d::kOrigin + vector);
}

// ---- Questions without a place ------------------------------------------------------------------

using NumberOf = ErrorStatus (AcDbCurve::*)(double&) const;
template <NumberOf method>
Value number(Interpreter& in, Args a) {
    double found = 0;
    return ((*Curve(in, a[0])).*method)(found) == eOk ? Value::real(found) : Value::nil();
}

using PointOf = ErrorStatus (AcDbCurve::*)(AcGePoint3d&) const;
template <PointOf method>
Value point(Interpreter& in, Args a) {
    AcGePoint3d found;
    return ((*Curve(in, a[0])).*method)(found) == eOk ? pointValue(in, found) : Value::nil();
}

using Kind = bool (AcDbCurve::*)() const;
template <Kind method>
Value kind(Interpreter& in, Args a) {
    return in.boolean(((*Curve(in, a[0])).*method)());
}

// ---- From a parameter, a distance or a point to another of them ---------------------------------

using NumberAtNumber = ErrorStatus (AcDbCurve::*)(double, double&) const;
template <NumberAtNumber method>
Value numberAtNumber(Interpreter& in, Args a) {
    double found = 0;
    const Curve curve(in, a[0]);
    return ((*curve).*method)(in.number(a[1]), found) == eOk ? Value::real(found) : Value::nil();
}

using NumberAtPoint = ErrorStatus (AcDbCurve::*)(const AcGePoint3d&, double&) const;
template <NumberAtPoint method>
Value numberAtPoint(Interpreter& in, Args a) {
    double found = 0;
    const Curve curve(in, a[0]);
    return ((*curve).*method)(pointArgument(in, a[1]), found) == eOk ? Value::real(found)
                                                                     : Value::nil();
}

using PointAtNumber = ErrorStatus (AcDbCurve::*)(double, AcGePoint3d&) const;
template <PointAtNumber method>
Value pointAtNumber(Interpreter& in, Args a) {
    AcGePoint3d found;
    const Curve curve(in, a[0]);
    return ((*curve).*method)(in.number(a[1]), found) == eOk ? pointValue(in, found) : Value::nil();
}

using VectorAtNumber = ErrorStatus (AcDbCurve::*)(double, AcGeVector3d&) const;
template <VectorAtNumber method>
Value vectorAtNumber(Interpreter& in, Args a) {
    AcGeVector3d found;
    const Curve curve(in, a[0]);
    return ((*curve).*method)(in.number(a[1]), found) == eOk ? listOf(in, found) : Value::nil();
}

// ---- The nearest point --------------------------------------------------------------------------

// (vlax-curve-getClosestPointTo name point [extend])
Value fnClosestPoint(Interpreter& in, Args a) {
    AcGePoint3d found;
    const Curve curve(in, a[0]);
    const bool extend = !a.get(2).isNil();
    return curve->getClosestPointTo(pointArgument(in, a[1]), found, extend) == eOk
               ? pointValue(in, found)
               : Value::nil();
}

// (vlax-curve-getClosestPointToProjection name point normal [extend])
Value fnClosestPointSeen(Interpreter& in, Args a) {
    AcGePoint3d found;
    const Curve curve(in, a[0]);
    const AcGePoint3d given = pointArgument(in, a[1]);
    const AcGeVector3d direction = pointArgument(in, a[2]) - AcGePoint3d::kOrigin;
    if (direction.isZeroLength()) in.badValue(L"direction " + in.toQuotedText(a[2]));
    const bool extend = !a.get(3).isNil();
    return curve->getClosestPointTo(given, direction, found, extend) == eOk ? pointValue(in, found)
                                                                            : Value::nil();
}

constexpr FunctionRow kFunctions[] = {
    {L"vlax-curve-getArea", number<&AcDbCurve::getArea>, 1, 1},
    {L"vlax-curve-getClosestPointTo", fnClosestPoint, 2, 3},
    {L"vlax-curve-getClosestPointToProjection", fnClosestPointSeen, 3, 4},
    {L"vlax-curve-getDistAtParam", numberAtNumber<&AcDbCurve::getDistAtParam>, 2, 2},
    {L"vlax-curve-getDistAtPoint", numberAtPoint<&AcDbCurve::getDistAtPoint>, 2, 2},
    {L"vlax-curve-getEndParam", number<&AcDbCurve::getEndParam>, 1, 1},
    {L"vlax-curve-getEndPoint", point<&AcDbCurve::getEndPoint>, 1, 1},
    {L"vlax-curve-getFirstDeriv", vectorAtNumber<&AcDbCurve::getFirstDeriv>, 2, 2},
    {L"vlax-curve-getParamAtDist", numberAtNumber<&AcDbCurve::getParamAtDist>, 2, 2},
    {L"vlax-curve-getParamAtPoint", numberAtPoint<&AcDbCurve::getParamAtPoint>, 2, 2},
    {L"vlax-curve-getPointAtDist", pointAtNumber<&AcDbCurve::getPointAtDist>, 2, 2},
    {L"vlax-curve-getPointAtParam", pointAtNumber<&AcDbCurve::getPointAtParam>, 2, 2},
    {L"vlax-curve-getSecondDeriv", vectorAtNumber<&AcDbCurve::getSecondDeriv>, 2, 2},
    {L"vlax-curve-getStartParam", number<&AcDbCurve::getStartParam>, 1, 1},
    {L"vlax-curve-getStartPoint", point<&AcDbCurve::getStartPoint>, 1, 1},
    {L"vlax-curve-isClosed", kind<&AcDbCurve::isClosed>, 1, 1},
    {L"vlax-curve-isPeriodic", kind<&AcDbCurve::isPeriodic>, 1, 1},
    {L"vlax-curve-isPlanar", kind<&AcDbCurve::isPlanar>, 1, 1},
};

}  // namespace

std::span<const FunctionRow> curveFunctions() {
    return kFunctions;
}

}  // namespace sg
