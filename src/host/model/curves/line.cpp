#include "platform/db/line.h"

#include <cmath>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/planar.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbLine, AcDbCurve, 0, 0, L"LINE", L"")

AcDbLine::AcDbLine() = default;
AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : start_(start), end_(end) {}
AcDbLine::~AcDbLine() = default;

Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

bool AcDbLine::subShape(CurveShape& shape) const {
    const AcGeVector3d along = end_ - start_;
    const double length = along.length();
    const AcGeVector3d unit = length > 0 ? along / length : AcGeVector3d();
    shape.spans.emplace_back(Piece::line(start_, unit, 0, length));
    shape.planarity = AcDb::kLinear;
    shape.normal = normal_;
    shape.thickness = thickness_;
    return true;
}

Acad::ErrorStatus AcDbLine::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    extents.addPoint(start_);
    extents.addPoint(end_);
    if (thickness_ != 0) {
        extents.addPoint(start_ + normal_ * thickness_);
        extents.addPoint(end_ + normal_ * thickness_);
    }
    return Acad::eOk;
}

AcDbCurve* AcDbLine::subPart(double from, double to) const {
    CurveShape shape;
    subShape(shape);
    const Span& span = shape.spans.front();
    auto* const part = new AcDbLine(from == span.from ? start_ : span.piece.at(from),
                                    to == span.to ? end_ : span.piece.at(to));
    part->normal_ = normal_;
    part->thickness_ = thickness_;
    return part;
}

Acad::ErrorStatus AcDbLine::reverseCurve() {
    assertWriteEnabled();
    std::swap(start_, end_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    AcGeVector3d right;
    if (!setUnit(right, (end_ - start_).crossProduct(normal_))) return Acad::eInvalidInput;
    auto* const copy = new AcDbLine(start_ + right * distance, end_ + right * distance);
    copy->normal_ = normal_;
    copy->thickness_ = thickness_;
    copy->setPropertiesFrom(this);
    curves.append(copy);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::extend(double parameter) {
    assertWriteEnabled();
    const AcGeVector3d along = end_ - start_;
    const double length = along.length();
    if (length == 0 || !std::isfinite(parameter)) return Acad::eInvalidInput;
    if (parameter >= 0 && parameter <= length) return Acad::eInvalidInput;
    const AcGePoint3d there = start_ + along * (parameter / length);
    (parameter < 0 ? start_ : end_) = there;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    start_ = transform * start_;
    end_ = transform * end_;
    const AcGeVector3d up = transform * normal_;
    if (setUnit(normal_, up)) thickness_ *= up.length();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                             AcDbIntArray&) const {
    assertReadEnabled();
    points.append(start_);
    points.append(end_);
    points.append(start_ + (end_ - start_) / 2);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool whole = indices.contains(2);
    if (whole || indices.contains(0)) start_ += offset;
    if (whole || indices.contains(1)) end_ += offset;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(start_);
    points.append(end_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) start_ += offset;
    if (indices.contains(1)) end_ += offset;
    return Acad::eOk;
}

void AcDbLine::subList() const {
    AcDbCurve::subList();
    const AcGeVector3d along = end_ - start_;
    listPoint(L"from", start_);
    listPoint(L"to", end_);
    listNumber(L"Length =", along.length());
    listAngle(L"Angle in XY Plane =", AcGeVector2d(along.x, along.y).angle());
    listNumber(L"Delta X =", along.x);
    listNumber(L"Delta Y =", along.y);
    listNumber(L"Delta Z =", along.z);
    listThickness(thickness_);
    listNormal(normal_);
}

namespace {

// In files the ends are near to each other, and mostly on the ground.
void writeEnds(DwgForm& form, AcDbDwgFiler& filer, const AcGePoint3d& start,
               const AcGePoint3d& end) {
    const bool isFlat = start.z == 0 && end.z == 0;
    filer.writeBool(isFlat);
    form.writeRawDouble(start.x);
    form.writeNear(end.x, start.x);
    form.writeRawDouble(start.y);
    form.writeNear(end.y, start.y);
    if (isFlat) return;
    form.writeRawDouble(start.z);
    form.writeNear(end.z, start.z);
}

void readEnds(DwgForm& form, AcDbDwgFiler& filer, AcGePoint3d& start, AcGePoint3d& end) {
    bool isFlat = false;
    filer.readBool(&isFlat);
    form.readRawDouble(&start.x);
    form.readNear(&end.x, start.x);
    form.readRawDouble(&start.y);
    form.readNear(&end.y, start.y);
    start.z = end.z = 0;
    if (isFlat) return;
    form.readRawDouble(&start.z);
    form.readNear(&end.z, start.z);
}

}  // namespace

Acad::ErrorStatus AcDbLine::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    DwgForm* const form = filer->dwgForm();
    if (form != nullptr && !isBefore(filer, AcDb::kDHL_1015)) {
        readEnds(*form, *filer, start_, end_);
    } else {
        filer->readPoint3d(&start_);
        filer->readPoint3d(&end_);
    }
    readThickness(filer, thickness_);
    readExtrusion(filer, normal_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLine::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    if (DwgForm* const form = filer->dwgForm()) {
        writeEnds(*form, *filer, start_, end_);
    } else {
        filer->writePoint3d(start_);
        filer->writePoint3d(end_);
    }
    sg::model::writeThickness(filer, thickness_);
    writeExtrusion(filer, normal_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLine::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbLine")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 10:
                start_ = fields.point();
                break;
            case 11:
                end_ = fields.point();
                break;
            case 39:
                thickness_ = fields.real();
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

Acad::ErrorStatus AcDbLine::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeString(100, L"AcDbLine");
    writeThickness(filer, thickness_);
    filer->writePoint3d(10, start_);
    filer->writePoint3d(11, end_);
    writeNormal(filer, normal_);
    return filer->filerStatus();
}
