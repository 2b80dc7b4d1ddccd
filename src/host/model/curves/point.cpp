#include "host/model/curves/point.h"
#include "host/model/core/dwg_form.h"

#include <algorithm>

#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/planar.h"
#include "host/model/tables/filing.h"
#include "platform/db/curve.h"
#include "platform/gi/draw.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, 0, 0, L"POINT", L"")

AcDbPoint::AcDbPoint() = default;
AcDbPoint::AcDbPoint(const AcGePoint3d& position) : position_(position) {}
AcDbPoint::~AcDbPoint() = default;

Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    position_ = position;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::setThickness(double thickness) {
    assertWriteEnabled();
    thickness_ = thickness;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbPoint::setEcsRotation(double rotation) {
    assertWriteEnabled();
    rotation_ = rotation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    assertReadEnabled();
    plane = AcGePlane(position_, normal_);
    type = AcDb::kLinear;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const PlanarTransform change(normal_, transform);
    position_ = transform * position_;
    if (change.flattens) return Acad::eOk;
    rotation_ = change.angle(rotation_);
    normal_ = change.normal;
    thickness_ *= change.thicknessScale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    extents.addPoint(position_);
    extents.addPoint(position_ + normal_ * thickness_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                              AcDbIntArray&) const {
    return subGetStretchPoints(points);
}

Acad::ErrorStatus AcDbPoint::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                 const AcGeVector3d& offset) {
    return subMoveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbPoint::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(position_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) position_ += offset;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeNode) points.append(position_);
    return Acad::eOk;
}

namespace {

bool isOn(const AcGePoint3d& point, const AcGePoint3d& nearest) {
    const double size = std::max(1.0, point.asVector().length());
    return point.distanceTo(nearest) <= AcGeContext::gTol.equalPoint() * size;
}

bool extendsOther(AcDb::Intersect mode) {
    return mode == AcDb::kExtendArg || mode == AcDb::kExtendBoth;
}

}  // namespace

Acad::ErrorStatus AcDbPoint::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                              AcGePoint3dArray& points, int64_t, int64_t) const {
    assertReadEnabled();
    const AcDbCurve* const curve = AcDbCurve::cast(other);
    if (curve == nullptr) return Acad::eNotApplicable;
    AcGePoint3d nearest;
    const Acad::ErrorStatus status =
        curve->getClosestPointTo(position_, nearest, extendsOther(mode));
    if (status == Acad::eOk && isOn(position_, nearest)) points.append(position_);
    return status;
}

Acad::ErrorStatus AcDbPoint::subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                              const AcGePlane& projection, AcGePoint3dArray& points,
                                              int64_t, int64_t) const {
    assertReadEnabled();
    const AcDbCurve* const curve = AcDbCurve::cast(other);
    if (curve == nullptr) return Acad::eNotApplicable;
    AcGePoint3d nearest;
    const Acad::ErrorStatus status =
        curve->getClosestPointTo(position_, projection.normal(), nearest, extendsOther(mode));
    if (status == Acad::eOk &&
        isOn(projection.orthoProject(position_), projection.orthoProject(nearest))) {
        points.append(position_);
    }
    return status;
}

bool AcDbPoint::subWorldDraw(AcGiWorldDraw* draw) {
    if (thickness_ != 0) draw->subEntityTraits().setThickness(thickness_);
    const AcGePoint3d mark[2] = {position_, position_};
    draw->geometry().polyline(2, mark, &normal_);
    return true;
}

void AcDbPoint::subList() const {
    AcDbEntity::subList();
    listPoint(L"at", position_);
    listThickness(thickness_);
    listNormal(normal_);
}

Acad::ErrorStatus AcDbPoint::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&position_);
    readThickness(filer, thickness_);
    readExtrusion(filer, normal_);
    filer->readDouble(&rotation_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPoint::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(position_);
    sg::model::writeThickness(filer, thickness_);
    writeExtrusion(filer, normal_);
    filer->writeDouble(rotation_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPoint::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbPoint")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 10:
                position_ = fields.point();
                break;
            case 39:
                thickness_ = fields.real();
                break;
            case 50:
                rotation_ = fields.real();
                break;
            case 210:
                setUnit(normal_, fields.vector());
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPoint::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeString(100, L"AcDbPoint");
    filer->writePoint3d(10, position_);
    writeThickness(filer, thickness_);
    writeNormal(filer, normal_);
    if (rotation_ != 0 || showsDefaults(filer)) filer->writeDouble(50, rotation_);
    return filer->filerStatus();
}
