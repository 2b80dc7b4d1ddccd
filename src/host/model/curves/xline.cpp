#include "host/model/curves/xline.h"

#include <cmath>
#include <limits>

#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"
#include "host/model/curves/ray.h"
#include "host/model/tables/filing.h"
#include "platform/db/line.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbXline, AcDbCurve, 0, 0, L"XLINE", L"")

AcDbXline::AcDbXline() = default;
AcDbXline::AcDbXline(const AcGePoint3d& basePoint, const AcGeVector3d& direction)
    : base_(basePoint) {
    setUnit(direction_, direction);
}
AcDbXline::~AcDbXline() = default;

Acad::ErrorStatus AcDbXline::setUnitDir(const AcGeVector3d& direction) {
    assertWriteEnabled();
    return setUnit(direction_, direction) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbXline::setSecondPoint(const AcGePoint3d& point) {
    return setUnitDir(point - base_);
}

bool AcDbXline::subShape(CurveShape& shape) const {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    shape.spans.emplace_back(Piece::line(base_, direction_, -kEndless, kEndless));
    shape.planarity = AcDb::kLinear;
    return true;
}

AcDbCurve* AcDbXline::subPart(double from, double to) const {
    const AcGePoint3d start = base_ + direction_ * from;
    const AcGePoint3d end = base_ + direction_ * to;
    if (!std::isfinite(from)) return new AcDbRay(end, -direction_);
    if (!std::isfinite(to)) return new AcDbRay(start, direction_);
    return new AcDbLine(start, end);
}

Acad::ErrorStatus AcDbXline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    if (!setUnit(direction_, transform * direction_)) return Acad::eDegenerateGeometry;
    base_ = transform * base_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                              AcDbIntArray&) const {
    assertReadEnabled();
    points.append(base_);
    points.append(secondPoint());
    points.append(base_ - direction_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                 const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) {
        base_ += offset;
    } else if (indices.contains(1)) {
        return setSecondPoint(secondPoint() + offset);
    } else if (indices.contains(2)) {
        return setUnitDir(direction_ - offset);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXline::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(base_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) base_ += offset;
    return Acad::eOk;
}

void AcDbXline::subList() const {
    AcDbCurve::subList();
    listPoint(L"base", base_);
    listPoint(L"through", secondPoint());
}

Acad::ErrorStatus AcDbXline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&base_);
    filer->readVector3d(&direction_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(base_);
    filer->writeVector3d(direction_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbXline")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) base_ = fields.point();
        if (fields.code() == 11) setUnit(direction_, fields.vector());
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXline::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeString(100, L"AcDbXline");
    filer->writePoint3d(10, base_);
    filer->writePoint3d(11, AcGePoint3d::kOrigin + direction_);
    return filer->filerStatus();
}
