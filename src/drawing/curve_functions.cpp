#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/db/curve.h"
#include "platform/db/polyline_2d.h"

namespace sg {
namespace {

// Opens the curve and has `answer` set the result; nil unless it does.
template <class Answer>
int onCurve(AcDbObjectId id, const Answer& answer) {
    acedRetNil();
    const Opened<AcDbCurve> curve(id, AcDb::kForRead);
    if (!curve) return kLispBadData;
    answer(*curve);
    return kLispOk;
}

// With a further argument, which is read before the curve is opened.
template <class Value, class Answer>
int onCurve(CallArguments& arguments, bool (*read)(const resbuf*&, Value&), const Answer& answer) {
    AcDbObjectId id;
    Value value{};
    if (!nextObjectId(arguments.next, id) || !read(arguments.next, value)) return kLispWrongType;
    return onCurve(id, [&](const AcDbCurve& curve) { answer(curve, value); });
}

}  // namespace

int curveGetLength() {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    return onCurve(id, [](const AcDbCurve& curve) {
        double end = 0;
        double length = 0;
        if (curve.getEndParam(end) == Acad::eOk && curve.getDistAtParam(end, length) == Acad::eOk) {
            acedRetReal(length);
        }
    });
}

int curveGetPointAtDist() {
    CallArguments arguments;
    if (arguments.next == nullptr || arguments.next->rbnext == nullptr) {
        acedRetNil();
        return kLispTooFew;
    }
    return onCurve<double>(arguments, nextNumber, [](const AcDbCurve& curve, double distance) {
        AcGePoint3d point;
        if (curve.getPointAtDist(distance, point) == Acad::eOk) retPoint(point);
    });
}

int curveGetClosestPointTo() {
    CallArguments arguments;
    return onCurve<AcGePoint3d>(
        arguments, nextPoint3d, [](const AcDbCurve& curve, const AcGePoint3d& given) {
            AcGePoint3d closest;
            if (curve.getClosestPointTo(given, AcGeVector3d::kZAxis, closest, false) == Acad::eOk) {
                retPoint(closest);
            }
        });
}

int curveGetDistAtPoint() {
    CallArguments arguments;
    return onCurve<AcGePoint3d>(arguments, nextPoint3d,
                                [](const AcDbCurve& curve, const AcGePoint3d& point) {
                                    double distance = 0;
                                    if (curve.getDistAtPoint(point, distance) == Acad::eOk)
                                        acedRetReal(distance);
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
