#include "host/model/entities/solid.h"

#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/tables/filing.h"
#include "platform/gi/draw.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbSolid, AcDbEntity, 0, 0, L"SOLID", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbTrace, AcDbSolid, 0, 0, L"TRACE", nullptr)

namespace {

// The corners as they go round.
constexpr std::array<size_t, 4> kRound = {0, 1, 3, 2};

}  // namespace

AcDbTrace::AcDbTrace() = default;
AcDbTrace::~AcDbTrace() = default;
AcDbSolid::AcDbSolid() = default;
AcDbSolid::AcDbSolid(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& p2,
                     const AcGePoint3d& p3)
    : corners_{p0, p1, p2, p3} {}
AcDbSolid::~AcDbSolid() = default;

Acad::ErrorStatus AcDbSolid::getPointAt(uint16_t index, AcGePoint3d& point) const {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertReadEnabled();
    point = corners_[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::setPointAt(uint16_t index, const AcGePoint3d& point) {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    corners_[index] = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::setThickness(double thickness) {
    assertWriteEnabled();
    thickness_ = thickness;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::setNormal(const AcGeVector3d& normal) {
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    normal_ = normal.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    plane = AcGePlane(corners_[0], normal_);
    type = AcDb::kPlanar;
    return Acad::eOk;
}

void AcDbSolid::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

bool AcDbSolid::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    std::array<AcGePoint3d, 4> round;
    for (size_t i = 0; i < round.size(); ++i)
        round[i] = corners_[kRound[i]];
    const AcGiFillType fill = draw->subEntityTraits().fillType();
    draw->subEntityTraits().setFillType(kAcGiFillAlways);
    draw->subEntityTraits().setThickness(thickness_);
    const bool triangle = round[2] == round[3];
    draw->geometry().polygon(triangle ? 3 : 4, round.data());
    draw->subEntityTraits().setThickness(0);
    draw->subEntityTraits().setFillType(fill);
    return true;
}

Acad::ErrorStatus AcDbSolid::subTransformBy(const AcGeMatrix3d& transform) {
    AcGeVector3d x = normal_.perpVector();
    AcGeVector3d y = normal_.crossProduct(x);
    const AcGeVector3d normal = x.transformBy(transform).crossProduct(y.transformBy(transform));
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    for (AcGePoint3d& corner : corners_)
        corner = transform * corner;
    const AcGeVector3d raised = normal_.transformBy(transform) * thickness_;
    normal_ = normal.normal();
    thickness_ = raised.dotProduct(normal_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                              AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : corners_)
        points.append(corner);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                 const AcGeVector3d& offset) {
    assertWriteEnabled();
    for (int i = 0; i < 4; ++i) {
        if (indices.contains(i)) corners_[static_cast<size_t>(i)] += offset;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSolid::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    for (size_t i = 0; i < corners_.size(); ++i) {
        const AcGePoint3d& from = corners_[kRound[i]];
        const AcGePoint3d& to = corners_[kRound[(i + 1) % kRound.size()]];
        if (mode == AcDb::kOsModeEnd) points.append(from);
        if (mode == AcDb::kOsModeMid && !(from == to)) points.append(from + (to - from) / 2);
    }
    return Acad::eOk;
}

void AcDbSolid::subList() const {
    AcDbEntity::subList();
    constexpr const wchar_t* kLabels[] = {L"first", L"second", L"third", L"fourth"};
    for (size_t i = 0; i < corners_.size(); ++i)
        sg::model::listPoint(kLabels[i], corners_[i]);
    sg::model::listThickness(thickness_);
    sg::model::listNormal(normal_);
}

Acad::ErrorStatus AcDbSolid::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    sg::model::writeThickness(filer, thickness_);
    if (filer->dwgForm() == nullptr) {
        for (const AcGePoint3d& corner : corners_)
            filer->writePoint3d(corner);
        return filer->writeVector3d(normal_);
    }
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    filer->writeDouble((toPlane * corners_[0]).z);
    for (const AcGePoint3d& corner : corners_) {
        const AcGePoint3d flat = toPlane * corner;
        filer->writePoint2d({flat.x, flat.y});
    }
    return sg::model::writeExtrusion(filer, normal_);
}

Acad::ErrorStatus AcDbSolid::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    sg::model::readThickness(filer, thickness_);
    if (filer->dwgForm() == nullptr) {
        for (AcGePoint3d& corner : corners_)
            filer->readPoint3d(&corner);
        return filer->readVector3d(&normal_);
    }
    double elevation = 0;
    std::array<AcGePoint2d, 4> flat;
    filer->readDouble(&elevation);
    for (AcGePoint2d& corner : flat)
        filer->readPoint2d(&corner);
    const Acad::ErrorStatus status = sg::model::readExtrusion(filer, normal_);
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
    for (size_t i = 0; i < flat.size(); ++i)
        corners_[i] = toWorld * AcGePoint3d(flat[i].x, flat[i].y, elevation);
    return status;
}

Acad::ErrorStatus AcDbSolid::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    filer->writeString(100, marker());
    for (size_t i = 0; i < corners_.size(); ++i) {
        filer->writePoint3d(10 + static_cast<int>(i), toPlane * corners_[i]);
    }
    sg::model::writeThickness(filer, thickness_);
    sg::model::writeNormal(filer, normal_);
    return filer->filerStatus();
}

// A list with three corners is a triangle.
Acad::ErrorStatus AcDbSolid::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(marker())) return Acad::eBadDxfSequence;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    std::array<AcGePoint3d, 4> corners;
    for (size_t i = 0; i < corners.size(); ++i)
        corners[i] = toPlane * corners_[i];
    bool third = false;
    bool fourth = false;
    FieldReader fields(filer);
    while (fields.next()) {
        const int code = fields.code();
        if (code >= 10 && code <= 13) {
            corners[static_cast<size_t>(code - 10)] = fields.point();
            third = third || code == 12;
            fourth = fourth || code == 13;
        } else if (code == 39) {
            thickness_ = fields.real();
        } else if (code == 210 && !fields.vector().isZeroLength()) {
            normal_ = fields.vector().normal();
        }
    }
    if (third && !fourth) corners[3] = corners[2];
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
    for (size_t i = 0; i < corners.size(); ++i)
        corners_[i] = toWorld * corners[i];
    return filer->filerStatus();
}
