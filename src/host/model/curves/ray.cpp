#include "host/model/curves/ray.h"

#include <cmath>
#include <limits>

#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"
#include "host/model/tables/filing.h"
#include "platform/db/line.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbRay, AcDbCurve, 0, 0, L"RAY", L"")

AcDbRay::AcDbRay() = default;
AcDbRay::AcDbRay(const AcGePoint3d& basePoint, const AcGeVector3d& direction) : base_(basePoint) {
    setUnit(direction_, direction);
}
AcDbRay::~AcDbRay() = default;

Acad::ErrorStatus AcDbRay::setUnitDir(const AcGeVector3d& direction) {
    assertWriteEnabled();
    return setUnit(direction_, direction) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbRay::setSecondPoint(const AcGePoint3d& point) {
    return setUnitDir(point - base_);
}

bool AcDbRay::subShape(CurveShape& shape) const {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    shape.spans.emplace_back(Piece::line(base_, direction_, 0, kEndless));
    shape.planarity = AcDb::kLinear;
    return true;
}

AcDbCurve* AcDbRay::subPart(double from, double to) const {
    const AcGePoint3d start = base_ + direction_ * from;
    if (std::isfinite(to)) return new AcDbLine(start, base_ + direction_ * to);
    return new AcDbRay(start, direction_);
}

Acad::ErrorStatus AcDbRay::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    if (!setUnit(direction_, transform * direction_)) return Acad::eDegenerateGeometry;
    base_ = transform * base_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRay::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                            AcDbIntArray&) const {
    assertReadEnabled();
    points.append(base_);
    points.append(secondPoint());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRay::subMoveGripPointsAt(const AcDbIntArray& indices,
                                               const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) {
        base_ += offset;
    } else if (indices.contains(1)) {
        return setSecondPoint(secondPoint() + offset);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRay::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(base_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRay::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) base_ += offset;
    return Acad::eOk;
}

void AcDbRay::subList() const {
    AcDbCurve::subList();
    listPoint(L"start", base_);
    listPoint(L"through", secondPoint());
}

Acad::ErrorStatus AcDbRay::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&base_);
    filer->readVector3d(&direction_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbRay::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(base_);
    filer->writeVector3d(direction_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbRay::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbRay")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) base_ = fields.point();
        if (fields.code() == 11) setUnit(direction_, fields.vector());
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbRay::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeString(100, L"AcDbRay");
    filer->writePoint3d(10, base_);
    filer->writePoint3d(11, AcGePoint3d::kOrigin + direction_);
    return filer->filerStatus();
}
