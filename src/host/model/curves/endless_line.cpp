#include "host/model/curves/endless_line.h"

#include <cmath>
#include <limits>

#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"
#include "host/model/curves/ray.h"
#include "host/model/tables/filing.h"
#include "platform/db/line.h"

namespace sg::model {

EndlessLine::EndlessLine() = default;
EndlessLine::EndlessLine(const AcGePoint3d& basePoint, const AcGeVector3d& direction)
    : base_(basePoint) {
    setUnit(direction_, direction);
}
EndlessLine::~EndlessLine() = default;

Acad::ErrorStatus EndlessLine::setUnitDir(const AcGeVector3d& direction) {
    assertWriteEnabled();
    return setUnit(direction_, direction) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus EndlessLine::setSecondPoint(const AcGePoint3d& point) {
    return setUnitDir(point - base_);
}

bool EndlessLine::subShape(CurveShape& shape) const {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    const double from = isEndlessBackward() ? -kEndless : 0;
    shape.spans.emplace_back(Piece::line(base_, direction_, from, kEndless));
    shape.planarity = AcDb::kLinear;
    return true;
}

AcDbCurve* EndlessLine::subPart(double from, double to) const {
    const AcGePoint3d start = base_ + direction_ * from;
    const AcGePoint3d end = base_ + direction_ * to;
    if (!std::isfinite(from)) return new AcDbRay(end, -direction_);
    if (!std::isfinite(to)) return new AcDbRay(start, direction_);
    return new AcDbLine(start, end);
}

Acad::ErrorStatus EndlessLine::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    if (!setUnit(direction_, transform * direction_)) return Acad::eDegenerateGeometry;
    base_ = transform * base_;
    return Acad::eOk;
}

Acad::ErrorStatus EndlessLine::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                AcDbIntArray&) const {
    assertReadEnabled();
    points.append(base_);
    points.append(secondPoint());
    if (isEndlessBackward()) points.append(base_ - direction_);
    return Acad::eOk;
}

Acad::ErrorStatus EndlessLine::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) {
        base_ += offset;
    } else if (indices.contains(1)) {
        return setSecondPoint(secondPoint() + offset);
    } else if (indices.contains(2) && isEndlessBackward()) {
        return setUnitDir(direction_ - offset);
    }
    return Acad::eOk;
}

Acad::ErrorStatus EndlessLine::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(base_);
    return Acad::eOk;
}

Acad::ErrorStatus EndlessLine::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) base_ += offset;
    return Acad::eOk;
}

void EndlessLine::subList() const {
    AcDbCurve::subList();
    listPoint(isEndlessBackward() ? L"base" : L"start", base_);
    listPoint(L"through", secondPoint());
}

Acad::ErrorStatus EndlessLine::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&base_);
    filer->readVector3d(&direction_);
    return filer->filerStatus();
}

Acad::ErrorStatus EndlessLine::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(base_);
    filer->writeVector3d(direction_);
    return filer->filerStatus();
}

Acad::ErrorStatus EndlessLine::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(isA()->name())) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) base_ = fields.point();
        if (fields.code() == 11) setUnit(direction_, fields.vector());
    }
    return filer->filerStatus();
}

Acad::ErrorStatus EndlessLine::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeString(100, isA()->name());
    filer->writePoint3d(10, base_);
    filer->writePoint3d(11, AcGePoint3d::kOrigin + direction_);
    return filer->filerStatus();
}

}  // namespace sg::model
