#include <cmath>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/planar.h"
#include "host/model/entities/dimension/dimension.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"

// Filing of dimensions.

using namespace sg::model;

namespace {

// Bits of group 70 above the kind.
enum TypeBit { kOwnBlock = 32, kXType = 64, kTextPlaced = 128 };

}  // namespace

Acad::ErrorStatus AcDbDimension::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
    filer->writeHardPointerId(block_);
    filer->writeHardPointerId(style_);
    for (const AcGePoint3d& point : points_)
        filer->writePoint3d(point);
    filer->writePoint3d(blockPosition_);
    filer->writeVector3d(normal_);
    for (const double value : {blockRotation_, rotation_, oblique_, leaderLength_, textRotation_,
                               horizontal_, lineSpacing_})
        filer->writeDouble(value);
    filer->writeString(text_);
    filer->writeInt16(static_cast<int16_t>(lineSpacingStyle_));
    filer->writeInt16(static_cast<int16_t>(attachment_));
    for (const bool flag :
         {xType_, textPlaced_, blockIsOwn_, flipFirst_, flipSecond_, stale_, moved_})
        filer->writeBool(flag);
    if (!moved_) return filer->filerStatus();
    AcGePoint3d origin;
    std::array<AcGeVector3d, 3> axes;
    carried_.getCoordSystem(origin, axes[0], axes[1], axes[2]);
    filer->writePoint3d(origin);
    for (const AcGeVector3d& axis : axes)
        filer->writeVector3d(axis);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDimension::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) return readFile(*filer);
    filer->readHardPointerId(&block_);
    filer->readHardPointerId(&style_);
    for (AcGePoint3d& point : points_)
        filer->readPoint3d(&point);
    filer->readPoint3d(&blockPosition_);
    filer->readVector3d(&normal_);
    for (double* const value : {&blockRotation_, &rotation_, &oblique_, &leaderLength_,
                                &textRotation_, &horizontal_, &lineSpacing_})
        filer->readDouble(value);
    filer->readString(text_);
    int16_t spacing = 0;
    int16_t attachment = 0;
    filer->readInt16(&spacing);
    filer->readInt16(&attachment);
    lineSpacingStyle_ = static_cast<AcDbMText::LineSpacingStyle>(spacing);
    attachment_ = static_cast<AcDbMText::AttachmentPoint>(attachment);
    for (bool* const flag :
         {&xType_, &textPlaced_, &blockIsOwn_, &flipFirst_, &flipSecond_, &stale_, &moved_})
        filer->readBool(flag);
    carried_.setToIdentity();
    if (!moved_) return filer->filerStatus();
    AcGePoint3d origin;
    std::array<AcGeVector3d, 3> axes;
    filer->readPoint3d(&origin);
    for (AcGeVector3d& axis : axes)
        filer->readVector3d(&axis);
    carried_.setCoordSystem(origin, axes[0], axes[1], axes[2]);
    return filer->filerStatus();
}

// ---- As groups ----------------------------------------------------------------------------------

// Programs see every group that some kind of dimension has; files have what is not the default.
Acad::ErrorStatus AcDbDimension::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    const bool all = filer->filerType() == AcDb::kBagFiler;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    filer->writeString(100, L"AcDbDimension");
    if (all || filer->dwgVersion() >= AcDb::kDHL_1024) filer->writeInt16(280, 0);
    filer->writeString(2, nameOf(block_));
    filer->writePoint3d(10, points_[kDefinition]);
    filer->writePoint3d(11, toPlane * points_[kText]);
    if (all || !(blockPosition_ == AcGePoint3d())) filer->writePoint3d(12, blockPosition_);
    const auto basic = static_cast<int16_t>(kind());
    filer->writeInt16(
        70, static_cast<int16_t>(basic | (blockIsOwn_ ? kOwnBlock : 0) | (xType_ ? kXType : 0) |
                                 (textPlaced_ ? kTextPlaced : 0)));
    if (all || !text_.empty()) filer->writeString(1, text_);
    filer->writeInt16(71, static_cast<int16_t>(attachment_));
    if (all || lineSpacingStyle_ != AcDbMText::kAtLeast) {
        filer->writeInt16(72, static_cast<int16_t>(lineSpacingStyle_));
    }
    if (all || lineSpacing_ != 1) filer->writeDouble(41, lineSpacing_);
    filer->writeDouble(42, measurement());
    if (all || filer->dwgVersion() >= AcDb::kDHL_1021) {
        filer->writeInt16(73, 0);
        filer->writeInt16(74, flipFirst_ ? 1 : 0);
        filer->writeInt16(75, flipSecond_ ? 1 : 0);
    }
    if (all) filer->writeDouble(52, oblique_);
    if (all || textRotation_ != 0) filer->writeDouble(53, textRotation_);
    if (all || blockRotation_ != 0) filer->writeDouble(54, blockRotation_);
    if (all || horizontal_ != 0) filer->writeDouble(51, horizontal_);
    writeNormal(filer, normal_);
    writeNameOf(filer, 3, style_, L"Standard");
    bool first = true;
    for (const wchar_t* const marker : markers()) {
        filer->writeString(100, marker);
        if (first && all && kind() != Kind::Arc) {
            dxfOutAll(filer);
        } else if (first) {
            dxfOutOwn(filer);
        }
        first = false;
    }
    return filer->filerStatus();
}

void AcDbDimension::dxfOutAll(AcDbDxfFiler* filer) const {
    filer->writePoint3d(13, points_[k13]);
    filer->writePoint3d(14, points_[k14]);
    filer->writePoint3d(15, points_[k15]);
    filer->writePoint3d(16, points_[k16]);
    filer->writeDouble(40, leaderLength_);
    filer->writeDouble(50, rotation_);
}

void AcDbDimension::takeType(int type) {
    blockIsOwn_ = (type & kOwnBlock) != 0;
    xType_ = (type & kXType) != 0;
    textPlaced_ = (type & kTextPlaced) != 0;
}

bool AcDbDimension::takeGroup(const FieldReader& field, AcDbDatabase* database) {
    switch (field.code()) {
        case 1:
            text_ = field.text();
            return true;
        case 2:
            block_ = recordNamed(database, NamedIn::blocks, field.text());
            return true;
        case 3:
            style_ = recordNamed(database, NamedIn::dimStyles, field.text());
            return true;
        case 10:
            points_[kDefinition] = field.point();
            return true;
        case 12:
            blockPosition_ = field.point();
            return true;
        case 41:
            if (field.real() > 0) lineSpacing_ = field.real();
            return true;
        case 51:
            horizontal_ = field.real();
            return true;
        case 52:
            oblique_ = field.real();
            return true;
        case 53:
            textRotation_ = field.real();
            return true;
        case 54:
            blockRotation_ = field.real();
            return true;
        case 70:
            takeType(field.integer());
            return true;
        case 71:
            if (field.integer() >= 1 && field.integer() <= 9) {
                attachment_ = static_cast<AcDbMText::AttachmentPoint>(field.integer());
            }
            return true;
        case 72:
            lineSpacingStyle_ = field.integer() == 2 ? AcDbMText::kExactly : AcDbMText::kAtLeast;
            return true;
        case 74:
            flipFirst_ = field.flag();
            return true;
        case 75:
            flipSecond_ = field.flag();
            return true;
        case 210:
            setUnit(normal_, field.vector());
            return true;
        default:
            return false;
    }
}

bool AcDbDimension::dxfInOwn(const FieldReader& field) {
    const int code = field.code();
    if (code >= 13 && code <= 17) {
        points_[k13 + static_cast<size_t>(code - 13)] = field.point();
        return true;
    }
    if (code == 40) leaderLength_ = field.real();
    if (code == 50) rotation_ = field.real();
    if (code == 52) oblique_ = field.real();
    return code == 40 || code == 50 || code == 52;
}

// A program that changes a dimension and leaves its block has the block made anew.
Acad::ErrorStatus AcDbDimension::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbDimension")) return Acad::eBadDxfSequence;
    const std::vector<uint8_t> before = definition();
    const AcDbObjectId blockBefore = block_;
    AcGePoint3d text = AcGeMatrix3d::worldToPlane(normal_) * points_[kText];
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 11) text = fields.point();
        takeGroup(fields, filer->database());
    }
    points_[kText] = AcGeMatrix3d::planeToWorld(normal_) * text;
    for (const wchar_t* const marker : markers()) {
        if (!filer->atSubclassData(marker)) continue;
        while (fields.next())
            dxfInOwn(fields);
    }
    const bool isSameBlock = !blockBefore.isNull() && block_ == blockBefore;
    if (isSameBlock && filer->filerType() == AcDb::kBagFiler && definition() != before) {
        stale_ = true;
    }
    return filer->filerStatus();
}
