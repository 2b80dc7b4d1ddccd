#include "platform/db/circle.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/circular.h"
#include "host/model/curves/ellipse.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/tables/filing.h"
#include "platform/db/arc.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, 0, 0, L"CIRCLE", L"")

namespace {
constexpr double kTurn = 2 * std::numbers::pi;
}

AcDbCircle::AcDbCircle() = default;
AcDbCircle::AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
    : center_(center), radius_(radius) {
    setUnit(normal_, normal);
}
AcDbCircle::~AcDbCircle() = default;

Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
    return radius >= 0 ? assign(radius_, radius) : Acad::eInvalidInput;
}

double AcDbCircle::circumference() const {
    return kTurn * radius_;
}

Acad::ErrorStatus AcDbCircle::setCircumference(double circumference) {
    return setRadius(circumference / kTurn);
}

Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

bool AcDbCircle::subShape(CurveShape& shape) const {
    shape.spans.emplace_back(circularPiece(center_, radius_, normal_, 0, kTurn));
    shape.closed = true;
    shape.periodic = true;
    shape.normal = normal_;
    shape.thickness = thickness_;
    return true;
}

// Along an axis it reaches as far as the axis leans to its plane.
Acad::ErrorStatus AcDbCircle::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const auto reach = [this](double along) {
        return radius_ * std::sqrt(std::max(0.0, 1 - along * along));
    };
    const AcGeVector3d half(reach(normal_.x), reach(normal_.y), reach(normal_.z));
    for (const AcGeVector3d& rise : {AcGeVector3d(), normal_ * thickness_}) {
        extents.addPoint(center_ + rise - half);
        extents.addPoint(center_ + rise + half);
    }
    return Acad::eOk;
}

AcDbCurve* AcDbCircle::subPart(double from, double to) const {
    auto* const arc = new AcDbArc(center_, normal_, radius_, from, to);
    arc->setThickness(thickness_);
    return arc;
}

Acad::ErrorStatus AcDbCircle::reverseCurve() {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbCircle::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    if (!(radius_ + distance > 0)) return Acad::eInvalidInput;
    auto* const copy = new AcDbCircle(center_, normal_, radius_ + distance);
    copy->thickness_ = thickness_;
    copy->setPropertiesFrom(this);
    curves.append(copy);
    return Acad::eOk;
}

void AcDbCircle::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

Acad::ErrorStatus AcDbCircle::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    CircleFields fields{center_, radius_, normal_, thickness_};
    return fields.transform(transform) ? Acad::eOk : Acad::eCannotScaleNonUniformly;
}

Acad::ErrorStatus AcDbCircle::subGetTransformedCopy(const AcGeMatrix3d& transform,
                                                    AcDbEntity*& copy) const {
    assertReadEnabled();
    if (PlanarTransform(normal_, transform).keepsArcs(thickness_)) {
        return AcDbCurve::subGetTransformedCopy(transform, copy);
    }
    return AcDbEllipse::copyOfArc(*this, transform, copy);
}

Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                               AcDbIntArray&) const {
    assertReadEnabled();
    const Piece circle = circularPiece(center_, radius_, normal_, 0, kTurn);
    points.append(center_);
    for (const AcGeVector3d& spoke : {circle.u, circle.v, -circle.u, -circle.v}) {
        points.append(center_ + spoke);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) {
        center_ += offset;
        return Acad::eOk;
    }
    AcGePoint3dArray grips;
    AcDbIntArray none;
    subGetGripPoints(grips, none, none);
    for (const int index : indices) {
        if (index < 1 || index > 4) continue;
        const AcGeVector3d spoke = grips[index] + offset - center_;
        const double radius = (spoke - normal_ * spoke.dotProduct(normal_)).length();
        if (!(radius > 0)) return Acad::eInvalidInput;
        radius_ = radius;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(center_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) center_ += offset;
    return Acad::eOk;
}

void AcDbCircle::subList() const {
    AcDbCurve::subList();
    listPoint(L"center", center_);
    listNumber(L"radius", radius_);
    listNumber(L"circumference", circumference());
    listNumber(L"area", std::numbers::pi * radius_ * radius_);
    listThickness(thickness_);
    listNormal(normal_);
}

Acad::ErrorStatus AcDbCircle::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&center_);
    filer->readDouble(&radius_);
    readThickness(filer, thickness_);
    readExtrusion(filer, normal_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(center_);
    filer->writeDouble(radius_);
    sg::model::writeThickness(filer, thickness_);
    writeExtrusion(filer, normal_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbCircle")) return status;
    AcGePoint3d inPlane = AcGeMatrix3d::worldToPlane(normal_) * center_;
    CircleFields circle{center_, radius_, normal_, thickness_};
    FieldReader fields(filer);
    while (fields.next())
        circle.takeGroup(fields, inPlane);
    center_ = AcGeMatrix3d::planeToWorld(normal_) * inPlane;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    writeCircle(filer, center_, radius_, normal_, thickness_);
    return filer->filerStatus();
}
