#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/db/curve.h"
#include "platform/db/polyline_2d.h"

namespace sg {
namespace {

// Opens the curve that stands next and has `answer` set the result; nil unless it does.
template <class Answer>
int onCurve(CallArguments& arguments, const Answer& answer) {
    AcDbObjectId id;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    const Opened<AcDbCurve> curve(id, AcDb::kForRead);
    if (!curve) return kLispBadData;
    return answer(*curve);
}

}  // namespace

int curveGetLength() {
    CallArguments arguments;
    return onCurve(arguments, [](const AcDbCurve& curve) {
        double end = 0;
        double length = 0;
        acedRetNil();
        if (curve.getEndParam(end) == Acad::eOk && curve.getDistAtParam(end, length) == Acad::eOk) {
            acedRetReal(length);
        }
        return kLispOk;
    });
}

int curveGetPointAtDist() {
    CallArguments arguments;
    if (arguments.next == nullptr || arguments.next->rbnext == nullptr) {
        acedRetNil();
        return kLispTooFew;
    }
    return onCurve(arguments, [&](const AcDbCurve& curve) {
        double distance = 0;
        if (!nextNumber(arguments.next, distance)) return kLispWrongType;
        AcGePoint3d point;
        acedRetNil();
        if (curve.getPointAtDist(distance, point) == Acad::eOk) retPoint(point);
        return kLispOk;
    });
}

int curveGetClosestPointTo() {
    CallArguments arguments;
    return onCurve(arguments, [&](const AcDbCurve& curve) {
        AcGePoint3d given;
        if (!nextPoint3d(arguments.next, given)) return kLispWrongType;
        AcGePoint3d closest;
        acedRetNil();
        if (curve.getClosestPointTo(given, AcGeVector3d::kZAxis, closest, false) == Acad::eOk) {
            retPoint(closest);
        }
        return kLispOk;
    });
}

int curveGetDistAtPoint() {
    CallArguments arguments;
    return onCurve(arguments, [&](const AcDbCurve& curve) {
        AcGePoint3d point;
        if (!nextPoint3d(arguments.next, point)) return kLispWrongType;
        double distance = 0;
        acedRetNil();
        if (curve.getDistAtPoint(point, distance) == Acad::eOk) acedRetReal(distance);
        return kLispOk;
    });
}

int polylineSetCurveType() {
    CallArguments arguments;
    AcDbObjectId id;
    std::wstring type;
    if (!nextObjectId(arguments.next, id) || !nextString(arguments.next, type)) {
        return kLispWrongType;
    }
    acedRetNil();
    const Opened<AcDb2dPolyline> polyline(id, AcDb::kForWrite);
    if (!polyline) return kLispOk;
    Acad::ErrorStatus status = Acad::eInvalidInput;
    if (type == L"f") status = polyline->curveFit();
    if (type == L"d") status = polyline->straighten();
    if (type == L"s") status = polyline->splineFit();
    if (status == Acad::eOk) acedRetT();
    return kLispOk;
}

}  // namespace sg
