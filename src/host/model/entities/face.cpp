#include "platform/db/face.h"

#include <array>
#include <cmath>
#include <span>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/tables/filing.h"
#include "platform/gi/draw.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbFace, AcDbEntity, 0, 0, L"3DFACE", nullptr)

AcDbFace::AcDbFace() = default;
AcDbFace::AcDbFace(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& p2,
                   const AcGePoint3d& p3, bool e0Visible, bool e1Visible, bool e2Visible,
                   bool e3Visible)
    : corners_{p0, p1, p2, p3},
      invisible_(static_cast<uint8_t>((e0Visible ? 0 : 1) | (e1Visible ? 0 : 2) |
                                      (e2Visible ? 0 : 4) | (e3Visible ? 0 : 8))) {}
AcDbFace::~AcDbFace() = default;

Acad::ErrorStatus AcDbFace::getVertexAt(uint16_t index, AcGePoint3d& point) const {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertReadEnabled();
    point = corners_[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(uint16_t index, const AcGePoint3d& point) {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    corners_[index] = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(uint16_t index, bool& visible) const {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertReadEnabled();
    visible = (invisible_ & (1 << index)) == 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(uint16_t index) {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    invisible_ = static_cast<uint8_t>(invisible_ & ~(1 << index));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(uint16_t index) {
    if (index >= corners_.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    invisible_ = static_cast<uint8_t>(invisible_ | (1 << index));
    return Acad::eOk;
}

namespace {

AcGeVector3d normalOf(const std::array<AcGePoint3d, 4>& corners) {
    return (corners[1] - corners[0]).crossProduct(corners[2] - corners[0]);
}

}  // namespace

bool AcDbFace::isPlanar() const {
    const AcGeVector3d normal = normalOf(corners_);
    if (normal.isZeroLength()) return false;
    const AcGeTol tolerance;
    return std::abs((corners_[3] - corners_[0]).dotProduct(normal.normal())) <=
           tolerance.equalPoint() * (1 + (corners_[3] - corners_[0]).length());
}

Acad::ErrorStatus AcDbFace::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    if (!isPlanar()) {
        type = AcDb::kNonPlanar;
        return Acad::eNonPlanarEntity;
    }
    plane = AcGePlane(corners_[0], normalOf(corners_));
    type = AcDb::kPlanar;
    return Acad::eOk;
}

namespace {

// A face that is not plane is bent between its second and its last corner.
void drawShaded(AcGiWorldDraw& draw, const std::array<AcGePoint3d, 4>& corners, bool isPlanar) {
    static constexpr int32_t kTriangle[] = {3, 0, 1, 2};
    static constexpr int32_t kPlane[] = {4, 0, 1, 2, 3};
    static constexpr int32_t kBent[] = {3, 0, 1, 3, 3, 1, 2, 3};
    const std::span<const int32_t> faces = corners[2] == corners[3]
                                               ? std::span<const int32_t>(kTriangle)
                                           : isPlanar ? std::span<const int32_t>(kPlane)
                                                      : std::span<const int32_t>(kBent);
    draw.geometry().shell(4, corners.data(), static_cast<uint32_t>(faces.size()), faces.data());
}

}  // namespace

bool AcDbFace::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (draw->regenType() == kAcGiShadedDisplay) drawShaded(*draw, corners_, isPlanar());
    for (size_t edge = 0; edge < corners_.size(); ++edge) {
        const std::array<AcGePoint3d, 2> ends = {corners_[edge], corners_[(edge + 1) % 4]};
        if ((invisible_ & (1 << edge)) != 0 || ends[0] == ends[1]) continue;
        draw->geometry().polyline(2, ends.data());
    }
    return true;
}

// Invisible edges reach as far as visible ones.
Acad::ErrorStatus AcDbFace::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : corners_)
        extents.addPoint(corner);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    for (AcGePoint3d& corner : corners_)
        corner = transform * corner;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                             AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : corners_)
        points.append(corner);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
    assertWriteEnabled();
    for (int i = 0; i < 4; ++i) {
        if (indices.contains(i)) corners_[static_cast<size_t>(i)] += offset;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t, const AcGePoint3d&,
                                              const AcGePoint3d&, const AcGeMatrix3d&,
                                              AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    for (size_t edge = 0; edge < corners_.size(); ++edge) {
        const AcGePoint3d& from = corners_[edge];
        const AcGePoint3d& to = corners_[(edge + 1) % 4];
        if (mode == AcDb::kOsModeEnd) points.append(from);
        if (mode == AcDb::kOsModeMid && !(from == to)) points.append(from + (to - from) / 2);
    }
    return Acad::eOk;
}

void AcDbFace::subList() const {
    AcDbEntity::subList();
    constexpr const wchar_t* kLabels[] = {L"first", L"second", L"third", L"fourth"};
    for (size_t i = 0; i < corners_.size(); ++i)
        sg::model::listPoint(kLabels[i], corners_[i]);
}

namespace {

// From release 2000 on a file has each corner near to the one before.
void writeCorners(sg::model::DwgForm& form, AcDbDwgFiler& filer,
                  const std::array<AcGePoint3d, 4>& corners) {
    const bool isFlat = corners[0].z == 0;
    filer.writeBool(isFlat);
    form.writeRawDouble(corners[0].x);
    form.writeRawDouble(corners[0].y);
    if (!isFlat) form.writeRawDouble(corners[0].z);
    for (size_t i = 1; i < corners.size(); ++i) {
        form.writeNear(corners[i].x, corners[i - 1].x);
        form.writeNear(corners[i].y, corners[i - 1].y);
        form.writeNear(corners[i].z, corners[i - 1].z);
    }
}

void readCorners(sg::model::DwgForm& form, AcDbDwgFiler& filer,
                 std::array<AcGePoint3d, 4>& corners) {
    bool isFlat = false;
    filer.readBool(&isFlat);
    corners[0] = AcGePoint3d();
    form.readRawDouble(&corners[0].x);
    form.readRawDouble(&corners[0].y);
    if (!isFlat) form.readRawDouble(&corners[0].z);
    for (size_t i = 1; i < corners.size(); ++i) {
        form.readNear(&corners[i].x, corners[i - 1].x);
        form.readNear(&corners[i].y, corners[i - 1].y);
        form.readNear(&corners[i].z, corners[i - 1].z);
    }
}

}  // namespace

Acad::ErrorStatus AcDbFace::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    if (sg::model::DwgForm* const form = filer->dwgForm()) {
        filer->writeBool(invisible_ == 0);
        writeCorners(*form, *filer, corners_);
        return invisible_ == 0 ? filer->filerStatus() : filer->writeInt16(invisible_);
    }
    for (const AcGePoint3d& corner : corners_)
        filer->writePoint3d(corner);
    return filer->writeInt16(invisible_);
}

Acad::ErrorStatus AcDbFace::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    bool hasNone = false;
    sg::model::DwgForm* const form = filer->dwgForm();
    if (form != nullptr && !sg::model::isBefore(filer, AcDb::kDHL_1015)) {
        filer->readBool(&hasNone);
        readCorners(*form, *filer, corners_);
    } else {
        for (AcGePoint3d& corner : corners_)
            filer->readPoint3d(&corner);
    }
    invisible_ = 0;
    return hasNone ? filer->filerStatus() : sg::model::readInt16As(filer, invisible_);
}

Acad::ErrorStatus AcDbFace::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbFace");
    for (size_t i = 0; i < corners_.size(); ++i) {
        filer->writePoint3d(10 + static_cast<int>(i), corners_[i]);
    }
    if (invisible_ != 0 || sg::model::showsDefaults(filer)) filer->writeInt16(70, invisible_);
    return filer->filerStatus();
}

// A list with three corners is a triangle.
Acad::ErrorStatus AcDbFace::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbFace")) return Acad::eBadDxfSequence;
    bool third = false;
    bool fourth = false;
    FieldReader fields(filer);
    while (fields.next()) {
        const int code = fields.code();
        if (code >= 10 && code <= 13) {
            corners_[static_cast<size_t>(code - 10)] = fields.point();
            third = third || code == 12;
            fourth = fourth || code == 13;
        } else if (code == 70) {
            invisible_ = static_cast<uint8_t>(fields.integer() & 15);
        }
    }
    if (third && !fourth) corners_[3] = corners_[2];
    return filer->filerStatus();
}
