#include "host/model/curves/curve_access.h"
#include "host/model/curves/intersect.h"
#include "platform/db/curve.h"

using sg::model::CurveAccess;
using sg::model::CurveMeeting;
using sg::model::CurveShape;

namespace {

AcDb::Intersect exchanged(AcDb::Intersect mode) {
    if (mode == AcDb::kExtendThis) return AcDb::kExtendArg;
    if (mode == AcDb::kExtendArg) return AcDb::kExtendThis;
    return mode;
}

// The shapes of both, extended as the mode says. False for an entity that is no curve with a shape.
bool shapesOf(const AcDbCurve& curve, const AcDbEntity& other, AcDb::Intersect mode,
              CurveShape& shape, CurveShape& otherShape) {
    const AcDbCurve* const otherCurve = AcDbCurve::cast(&other);
    if (otherCurve == nullptr || !CurveAccess::shapeOf(curve, shape) ||
        !CurveAccess::shapeOf(*otherCurve, otherShape)) {
        return false;
    }
    if (mode == AcDb::kExtendThis || mode == AcDb::kExtendBoth) shape = shape.extended();
    if (mode == AcDb::kExtendArg || mode == AcDb::kExtendBoth) otherShape = otherShape.extended();
    return true;
}

void append(const std::vector<CurveMeeting>& meetings, AcGePoint3dArray& points) {
    for (const CurveMeeting& meeting : meetings)
        points.append(meeting.point);
}

}  // namespace

// What is no curve of the host's knows best itself how it meets a curve.
Acad::ErrorStatus AcDbCurve::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                              AcGePoint3dArray& points, int64_t thisMarker,
                                              int64_t otherMarker) const {
    assertReadEnabled();
    if (other == nullptr) return Acad::eNullEntityPointer;
    CurveShape shape;
    if (!CurveAccess::shapeOf(*this, shape)) {
        return AcDbEntity::subIntersectWith(other, mode, points, thisMarker, otherMarker);
    }
    CurveShape otherShape;
    if (!shapesOf(*this, *other, mode, shape, otherShape)) {
        return other->intersectWith(this, exchanged(mode), points, otherMarker, thisMarker);
    }
    append(sg::model::meetShapes(shape, otherShape), points);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                              const AcGePlane& projection, AcGePoint3dArray& points,
                                              int64_t thisMarker, int64_t otherMarker) const {
    assertReadEnabled();
    if (other == nullptr) return Acad::eNullEntityPointer;
    CurveShape shape;
    if (!CurveAccess::shapeOf(*this, shape)) {
        return AcDbEntity::subIntersectWith(other, mode, projection, points, thisMarker,
                                            otherMarker);
    }
    CurveShape otherShape;
    if (shapesOf(*this, *other, mode, shape, otherShape)) {
        append(sg::model::meetShapesAlong(shape, otherShape, projection.normal()), points);
        return Acad::eOk;
    }
    // The other's answers are points on the other; the answers here are those above them on this.
    AcGePoint3dArray onOther;
    const Acad::ErrorStatus status =
        other->intersectWith(this, exchanged(mode), projection, onOther, otherMarker, thisMarker);
    for (const AcGePoint3d& point : onOther) {
        points.append(shape.closestAlong(point, projection.normal()).point);
    }
    return status;
}
