#include <algorithm>

#include "base/text.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/symbol_records.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/entities/text_setting.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "host/text/mtext_layout.h"
#include "platform/db/mtext.h"

// Filing of texts of several lines. Their points and directions are in world coordinates.

using sg::model::FieldReader;
using sg::model::showsDefaults;

namespace {

constexpr size_t kPieceLength = 250;  // of contents in one group

// A fill's settings are in files only with these flags.
constexpr int32_t kFilled = 1;
constexpr int32_t kFramed = 16;  // from release 2018 on

// Of files from release 2018 on.
constexpr int16_t kVersion = 0;

bool hasSettings(AcDbDwgFiler* filer, int32_t fillFlags) {
    if (filer->dwgForm() == nullptr) return true;
    const bool isOld = sg::model::isBefore(filer, AcDb::kDHL_1032);
    return (fillFlags & (isOld ? kFilled : kFilled | kFramed)) != 0;
}

}  // namespace

// What is not annotative repeats in newer files, with the columns, what stands ahead of it.
Acad::ErrorStatus AcDbMText::writeRepeated(AcDbDwgFiler& filer) const {
    filer.writeBool(true);
    filer.writeInt16(kVersion);
    filer.writeBool(true);
    filer.writeHardPointerId(sg::model::findRegisteredApplication(filer.database(), L"ACAD"));
    filer.writeInt32(attachment_);
    filer.writeVector3d(direction_);
    filer.writePoint3d(location_);
    filer.writeDouble(width_);
    filer.writeDouble(definedHeight_);
    filer.writeDouble(actualWidth());
    filer.writeDouble(actualHeight());
    return writeColumns(filer);
}

Acad::ErrorStatus AcDbMText::readRepeated(AcDbDwgFiler& filer) {
    bool isThere = false;
    filer.readBool(&isThere);
    if (!isThere) return filer.filerStatus();
    int16_t version = 0;
    bool isDefault = false;
    AcDbHardPointerId application;
    int32_t attachment = 0;
    AcGeVector3d direction;
    AcGePoint3d location;
    double unused = 0;
    filer.readInt16(&version);
    filer.readBool(&isDefault);
    filer.readHardPointerId(&application);
    filer.readInt32(&attachment);
    filer.readVector3d(&direction);
    filer.readPoint3d(&location);
    for (int i = 0; i < 4; ++i)
        filer.readDouble(&unused);
    return readColumns(filer);
}

namespace {

enum ColumnType : int16_t { kNoColumns = 0, kDynamicColumns = 2 };

}  // namespace

Acad::ErrorStatus AcDbMText::writeColumns(AcDbDwgFiler& filer) const {
    if (columns_ == nullptr) return filer.writeInt16(kNoColumns);
    filer.writeInt16(columns_->type);
    filer.writeInt32(columns_->count);
    filer.writeDouble(columns_->width);
    filer.writeDouble(columns_->gutter);
    filer.writeBool(columns_->isAutomatic);
    filer.writeBool(columns_->isReversed);
    for (const double height : columns_->heights)
        filer.writeDouble(height);
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbMText::readColumns(AcDbDwgFiler& filer) {
    Columns columns;
    columns_.reset();
    filer.readInt16(&columns.type);
    if (columns.type == kNoColumns || filer.filerStatus() != Acad::eOk) return filer.filerStatus();
    filer.readInt32(&columns.count);
    filer.readDouble(&columns.width);
    filer.readDouble(&columns.gutter);
    filer.readBool(&columns.isAutomatic);
    filer.readBool(&columns.isReversed);
    const bool hasHeights = !columns.isAutomatic && columns.type == kDynamicColumns;
    for (int32_t left = hasHeights ? columns.count : 0; left > 0; --left) {
        if (filer.readDouble(&columns.heights.emplace_back()) != Acad::eOk) break;
    }
    columns_ = std::make_unique<Columns>(std::move(columns));
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbMText::writeFill(AcDbDwgFiler& filer) const {
    if (filer.dwgForm() == nullptr) filer.writeBool(fill_ != nullptr);
    const int32_t flags = fill_ == nullptr ? 0 : fill_->flags;
    if (fill_ != nullptr || filer.dwgForm() != nullptr) filer.writeInt32(flags);
    if (fill_ == nullptr || !hasSettings(&filer, flags)) return filer.filerStatus();
    filer.writeDouble(fill_->scale);
    sg::model::writeColor(&filer, fill_->color);
    return filer.writeUInt32(fill_->transparency);
}

Acad::ErrorStatus AcDbMText::readFill(AcDbDwgFiler& filer) {
    bool hasFill = true;
    int32_t flags = 0;
    fill_.reset();
    if (filer.dwgForm() == nullptr) filer.readBool(&hasFill);
    if (hasFill) filer.readInt32(&flags);
    if (!hasFill || (flags == 0 && filer.dwgForm() != nullptr)) return filer.filerStatus();
    fill_ = std::make_unique<Fill>();
    fill_->flags = flags;
    if (!hasSettings(&filer, flags)) return filer.filerStatus();
    filer.readDouble(&fill_->scale);
    sg::model::readColor(&filer, fill_->color);
    return filer.readUInt32(&fill_->transparency);
}

Acad::ErrorStatus AcDbMText::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    filer->writePoint3d(location_);
    filer->writeVector3d(normal_);
    filer->writeVector3d(direction_);
    filer->writeDouble(width_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) filer->writeDouble(definedHeight_);
    filer->writeDouble(textHeight_);
    filer->writeInt16(static_cast<int16_t>(attachment_));
    filer->writeInt16(static_cast<int16_t>(flow_));
    if (inFile) {
        filer->writeDouble(actualHeight());
        filer->writeDouble(actualWidth());
    }
    filer->writeString(contents_);
    filer->writeHardPointerId(style_);
    filer->writeInt16(static_cast<int16_t>(lineSpacingStyle_));
    filer->writeDouble(lineSpacingFactor_);
    if (inFile) filer->writeBool(false);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1018)) writeFill(*filer);
    if (inFile && !sg::model::isBefore(filer, AcDb::kDHL_1032)) writeRepeated(*filer);
    if (!inFile) writeColumns(*filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbMText::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    filer->readPoint3d(&location_);
    filer->readVector3d(&normal_);
    filer->readVector3d(&direction_);
    filer->readDouble(&width_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) filer->readDouble(&definedHeight_);
    filer->readDouble(&textHeight_);
    sg::model::readInt16As(filer, attachment_);
    sg::model::readInt16As(filer, flow_);
    if (inFile) {
        double measured = 0;
        filer->readDouble(&measured);
        filer->readDouble(&measured);
    }
    filer->readString(contents_);
    filer->readHardPointerId(&style_);
    if (sg::model::isBefore(filer, AcDb::kDHL_1015)) return filer->filerStatus();
    sg::model::readInt16As(filer, lineSpacingStyle_);
    filer->readDouble(&lineSpacingFactor_);
    bool unused = false;
    if (inFile) filer->readBool(&unused);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1018)) readFill(*filer);
    if (inFile && !sg::model::isBefore(filer, AcDb::kDHL_1032)) readRepeated(*filer);
    if (!inFile) readColumns(*filer);
    return filer->filerStatus();
}

namespace {

constexpr const wchar_t* kUsualStyle = L"Standard";

// All but the last piece of the contents are of one length.
void writeContents(AcDbDxfFiler* filer, const std::wstring& contents) {
    size_t at = 0;
    for (; contents.size() - at > kPieceLength; at += kPieceLength) {
        filer->writeString(3, contents.substr(at, kPieceLength));
    }
    filer->writeString(1, contents.substr(at));
}

}  // namespace

// Drawing files leave out what is usual.
Acad::ErrorStatus AcDbMText::dxfOutFields(AcDbDxfFiler* filer) const {
    const bool all = showsDefaults(filer);
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbMText");
    filer->writePoint3d(10, location_);
    filer->writeDouble(40, textHeight_);
    filer->writeDouble(41, width_);
    if (all || definedHeight_ != 0) filer->writeDouble(46, definedHeight_);
    filer->writeInt16(71, static_cast<int16_t>(attachment_));
    filer->writeInt16(72, static_cast<int16_t>(flow_));
    writeContents(filer, contents_);
    const bool hasUsualStyle =
        style_.isNull() || sg::equalIgnoringCase(sg::model::nameOf(style_), kUsualStyle);
    if (all || !hasUsualStyle) sg::model::writeNameOf(filer, 7, style_, kUsualStyle);
    sg::model::writeNormal(filer, normal_);
    if (all || direction_ != AcGeVector3d::kXAxis) filer->writeVector3d(11, direction_);
    if (all) {
        const sg::text::TextLayout layout = layOut();
        filer->writeDouble(42, layout.width);
        filer->writeDouble(43, layout.height);
        filer->writeDouble(50, rotation());
    }
    filer->writeInt16(73, static_cast<int16_t>(lineSpacingStyle_));
    filer->writeDouble(44, lineSpacingFactor_);
    if (fill_ == nullptr) return filer->filerStatus();
    filer->writeInt32(90, fill_->flags);
    filer->writeInt16(63, static_cast<int16_t>(fill_->color.colorIndex()));
    if (fill_->color.isByColor()) filer->writeInt32(421, static_cast<int32_t>(fill_->color.rgb()));
    filer->writeDouble(45, fill_->scale);
    return filer->writeInt32(441, static_cast<int32_t>(fill_->transparency));
}

// The direction stands as a vector or as an angle; the later one holds.
Acad::ErrorStatus AcDbMText::dxfInFields(AcDbDxfFiler* filer) {
    Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbMText")) return Acad::eBadDxfSequence;
    std::wstring contents;
    bool hasContents = false;
    bool turnsByAngle = false;
    double angle = 0;
    AcGeVector3d direction = direction_;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 3:
            case 1:
                contents += fields.text();
                hasContents = true;
                break;
            case 11:
                direction = fields.vector();
                turnsByAngle = false;
                break;
            case 50:
                angle = fields.real();
                turnsByAngle = true;
                break;
            default:
                status = takeField(filer, fields.group());
                if (status != Acad::eOk) return status;
                break;
        }
    }
    if (hasContents) contents_ = std::move(contents);
    setNormal(normal_);
    if (turnsByAngle) {
        setRotation(angle);
    } else {
        setDirection(direction);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbMText::takeField(AcDbDxfFiler* filer, const resbuf& group) {
    const FieldReader field(filer, group);
    switch (field.code()) {
        case 10:
            location_ = field.point();
            break;
        case 40:
            return setTextHeight(field.real());
        case 41:
            width_ = std::max(0.0, field.real());
            break;
        case 46:
            definedHeight_ = field.real();
            break;
        case 71:
            return setAttachment(static_cast<AttachmentPoint>(field.integer()));
        case 72:
            flow_ = static_cast<FlowDirection>(field.integer());
            break;
        case 73:
            lineSpacingStyle_ = field.integer() == kExactly ? kExactly : kAtLeast;
            break;
        case 44:
            setLineSpacingFactor(field.real());
            break;
        case 7:
            style_ = sg::model::recordNamed(filer->database(), sg::model::NamedIn::textStyles,
                                            field.text());
            if (style_.isNull()) {
                return filer->setError(Acad::eKeyNotFound, L"text style " + field.text());
            }
            break;
        case 210:
            if (!field.vector().isZeroLength()) normal_ = field.vector().normal();
            break;
        case 90:
            needFill().flags = field.integer();
            break;
        case 63:
            needFill().color.setColorIndex(static_cast<uint16_t>(field.integer()));
            break;
        case 421:
            sg::model::setTrueColor(needFill().color, field.integer());
            break;
        case 45:
            // In texts without a fill the group is of another kind.
            if (fill_ != nullptr) fill_->scale = field.real();
            break;
        case 441:
            needFill().transparency = static_cast<uint32_t>(field.integer());
            break;
        default:
            break;
    }
    return Acad::eOk;
}
