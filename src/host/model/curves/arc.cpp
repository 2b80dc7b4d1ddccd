#include "platform/db/arc.h"

#include <cmath>
#include <numbers>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/circular.h"
#include "host/model/curves/ellipse.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/math/angles.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbArc, AcDbCurve, 0, 0, L"ARC", L"")

namespace {
constexpr double kTurn = 2 * std::numbers::pi;
}

AcDbArc::AcDbArc() = default;
AcDbArc::AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
    : center_(center),
      radius_(radius),
      start_(normalAngle(startAngle)),
      end_(normalAngle(endAngle)) {}
AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
                 double startAngle, double endAngle)
    : AcDbArc(center, radius, startAngle, endAngle) {
    setUnit(normal_, normal);
}
AcDbArc::~AcDbArc() = default;

Acad::ErrorStatus AcDbArc::setRadius(double radius) {
    return radius >= 0 ? assign(radius_, radius) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbArc::setStartAngle(double angle) {
    return assign(start_, normalAngle(angle));
}

Acad::ErrorStatus AcDbArc::setEndAngle(double angle) {
    return assign(end_, normalAngle(angle));
}

Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

double AcDbArc::totalAngle() const {
    const double end = angleFrom(end_, start_);
    return end > start_ ? end - start_ : kTurn;
}

AcGePoint3d AcDbArc::pointAt(double angle) const {
    return circularPiece(center_, radius_, normal_, 0, kTurn).at(angle);
}

bool AcDbArc::subShape(CurveShape& shape) const {
    const double end = end_ > start_ ? end_ : start_ + totalAngle();
    shape.spans.emplace_back(circularPiece(center_, radius_, normal_, start_, end));
    shape.normal = normal_;
    shape.thickness = thickness_;
    return true;
}

AcDbCurve* AcDbArc::subPart(double from, double to) const {
    auto* const part = new AcDbArc(center_, normal_, radius_, from, to);
    part->thickness_ = thickness_;
    return part;
}

Acad::ErrorStatus AcDbArc::reverseCurve() {
    assertWriteEnabled();
    const AcGePoint3d start = pointAt(end_);
    const AcGePoint3d end = pointAt(start_);
    normal_.negate();
    thickness_ = -thickness_;
    const AcGeMatrix3d plane = AcGeMatrix3d::worldToPlane(normal_);
    const auto angleOf = [&](const AcGePoint3d& point) {
        const AcGeVector3d spoke = plane * (point - center_);
        return AcGeVector2d(spoke.x, spoke.y).angle();
    };
    start_ = angleOf(start);
    end_ = angleOf(end);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    if (!(radius_ + distance > 0)) return Acad::eInvalidInput;
    auto* const copy = new AcDbArc(center_, normal_, radius_ + distance, start_, end_);
    copy->thickness_ = thickness_;
    copy->setPropertiesFrom(this);
    curves.append(copy);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::extend(double parameter) {
    assertWriteEnabled();
    const double end = start_ + totalAngle();
    if (parameter < start_ && parameter > end - kTurn) return setStartAngle(parameter);
    if (parameter > end && parameter < start_ + kTurn) return setEndAngle(parameter);
    return Acad::eInvalidInput;
}

void AcDbArc::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

Acad::ErrorStatus AcDbArc::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const PlanarTransform change(normal_, transform);
    CircleFields circle{center_, radius_, normal_, thickness_};
    if (!circle.transform(transform)) return Acad::eCannotScaleNonUniformly;
    const double start = change.angle(start_);
    const double end = change.angle(end_);
    start_ = change.turnsOver ? end : start;
    end_ = change.turnsOver ? start : end;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subGetTransformedCopy(const AcGeMatrix3d& transform,
                                                 AcDbEntity*& copy) const {
    assertReadEnabled();
    if (PlanarTransform(normal_, transform).keepsArcs(thickness_)) {
        return AcDbCurve::subGetTransformedCopy(transform, copy);
    }
    return AcDbEllipse::copyOfArc(*this, transform, copy);
}

Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                            AcDbIntArray&) const {
    assertReadEnabled();
    points.append(pointAt(start_));
    points.append(pointAt(end_));
    points.append(pointAt(start_ + totalAngle() / 2));
    points.append(center_);
    return Acad::eOk;
}

bool AcDbArc::setThrough(const AcGePoint3d& start, const AcGePoint3d& middle,
                         const AcGePoint3d& end) {
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    const AcGePoint3d a = toPlane * start;
    const AcGeVector3d b = toPlane * (middle - start);
    const AcGeVector3d c = toPlane * (end - start);
    const double cross = b.x * c.y - b.y * c.x;
    const double bb = b.x * b.x + b.y * b.y;
    const double cc = c.x * c.x + c.y * c.y;
    if (std::abs(cross) <= 1e-12 * std::max(bb, cc)) return false;
    const AcGeVector3d toCenter((bb * c.y - cc * b.y) / (2 * cross),
                                (cc * b.x - bb * c.x) / (2 * cross), 0);
    const auto angleOf = [&](const AcGeVector3d& fromStart) {
        return AcGeVector2d(fromStart.x - toCenter.x, fromStart.y - toCenter.y).angle();
    };
    const double first = angleOf(AcGeVector3d());
    const double last = angleOf(c);
    center_ = AcGeMatrix3d::planeToWorld(normal_) * (a + toCenter);
    radius_ = toCenter.length();
    // Counter-clockwise from the start over the middle to the end, or from the end.
    start_ = cross > 0 ? first : last;
    end_ = cross > 0 ? last : first;
    return true;
}

Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray& indices,
                                               const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(3)) {
        center_ += offset;
        return Acad::eOk;
    }
    AcGePoint3dArray grips;
    AcDbIntArray none;
    subGetGripPoints(grips, none, none);
    for (int i = 0; i < 3; ++i) {
        if (indices.contains(i)) grips[i] += offset;
    }
    return setThrough(grips[0], grips[2], grips[1]) ? Acad::eOk : Acad::eDegenerateGeometry;
}

Acad::ErrorStatus AcDbArc::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(pointAt(start_));
    points.append(pointAt(end_));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool moveStart = indices.contains(0);
    const bool moveEnd = indices.contains(1);
    if (moveStart && moveEnd) {
        center_ += offset;
        return Acad::eOk;
    }
    if (!moveStart && !moveEnd) return Acad::eOk;
    const double height = radius_ * (1 - std::cos(totalAngle() / 2));
    const AcGePoint3d start = pointAt(start_) + (moveStart ? offset : AcGeVector3d());
    const AcGePoint3d end = pointAt(end_) + (moveEnd ? offset : AcGeVector3d());
    // The arc bulges to the right of its chord.
    AcGeVector3d right;
    if (!setUnit(right, (end - start).crossProduct(normal_))) return Acad::eDegenerateGeometry;
    const AcGePoint3d top = start + (end - start) / 2 + right * height;
    return setThrough(start, top, end) ? Acad::eOk : Acad::eDegenerateGeometry;
}

void AcDbArc::subList() const {
    AcDbCurve::subList();
    listPoint(L"center", center_);
    listNumber(L"radius", radius_);
    listAngle(L"start angle", start_);
    listAngle(L"end angle", end_);
    listNumber(L"length", length());
    listThickness(thickness_);
    listNormal(normal_);
}

Acad::ErrorStatus AcDbArc::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&center_);
    filer->readDouble(&radius_);
    readThickness(filer, thickness_);
    readExtrusion(filer, normal_);
    filer->readDouble(&start_);
    filer->readDouble(&end_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbArc::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(center_);
    filer->writeDouble(radius_);
    sg::model::writeThickness(filer, thickness_);
    writeExtrusion(filer, normal_);
    filer->writeDouble(start_);
    filer->writeDouble(end_);
    return filer->filerStatus();
}

// The circle's groups and the angles stand behind markers of their own; input without markers has
// them in one run.
Acad::ErrorStatus AcDbArc::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    AcGePoint3d inPlane = AcGeMatrix3d::worldToPlane(normal_) * center_;
    CircleFields circle{center_, radius_, normal_, thickness_};
    for (const wchar_t* const marker : {L"AcDbCircle", L"AcDbArc"}) {
        if (!filer->atSubclassData(marker)) continue;
        FieldReader fields(filer);
        while (fields.next()) {
            if (circle.takeGroup(fields, inPlane)) continue;
            if (fields.code() == 50) start_ = normalAngle(fields.real());
            if (fields.code() == 51) end_ = normalAngle(fields.real());
        }
    }
    center_ = AcGeMatrix3d::planeToWorld(normal_) * inPlane;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbArc::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    writeCircle(filer, center_, radius_, normal_, thickness_);
    filer->writeString(100, L"AcDbArc");
    filer->writeDouble(50, start_);
    filer->writeDouble(51, end_);
    return filer->filerStatus();
}
