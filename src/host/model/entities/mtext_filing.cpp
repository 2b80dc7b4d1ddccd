#include <algorithm>

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

}  // namespace

Acad::ErrorStatus AcDbMText::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    filer->writePoint3d(location_);
    filer->writeVector3d(normal_);
    filer->writeVector3d(direction_);
    filer->writeDouble(width_);
    filer->writeDouble(definedHeight_);
    filer->writeDouble(textHeight_);
    filer->writeHardPointerId(style_);
    filer->writeString(contents_);
    filer->writeDouble(lineSpacingFactor_);
    filer->writeInt16(static_cast<int16_t>(attachment_));
    filer->writeInt16(static_cast<int16_t>(flow_));
    filer->writeInt16(static_cast<int16_t>(lineSpacingStyle_));
    filer->writeBool(fill_ != nullptr);
    if (fill_ == nullptr) return filer->filerStatus();
    filer->writeInt32(fill_->flags);
    sg::model::writeColor(filer, fill_->color);
    filer->writeDouble(fill_->scale);
    return filer->writeUInt32(fill_->transparency);
}

Acad::ErrorStatus AcDbMText::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    int16_t attachment = kTopLeft;
    int16_t flow = kByStyle;
    int16_t spacing = kAtLeast;
    bool hasFill = false;
    filer->readPoint3d(&location_);
    filer->readVector3d(&normal_);
    filer->readVector3d(&direction_);
    filer->readDouble(&width_);
    filer->readDouble(&definedHeight_);
    filer->readDouble(&textHeight_);
    filer->readHardPointerId(&style_);
    filer->readString(contents_);
    filer->readDouble(&lineSpacingFactor_);
    filer->readInt16(&attachment);
    filer->readInt16(&flow);
    filer->readInt16(&spacing);
    filer->readBool(&hasFill);
    attachment_ = static_cast<AttachmentPoint>(attachment);
    flow_ = static_cast<FlowDirection>(flow);
    lineSpacingStyle_ = static_cast<LineSpacingStyle>(spacing);
    fill_.reset();
    if (!hasFill) return filer->filerStatus();
    fill_ = std::make_unique<Fill>();
    filer->readInt32(&fill_->flags);
    sg::model::readColor(filer, fill_->color);
    filer->readDouble(&fill_->scale);
    return filer->readUInt32(&fill_->transparency);
}

namespace {

// All but the last piece of the contents are of one length.
void writeContents(AcDbDxfFiler* filer, const std::wstring& contents) {
    size_t at = 0;
    for (; contents.size() - at > kPieceLength; at += kPieceLength) {
        filer->writeString(3, contents.substr(at, kPieceLength));
    }
    filer->writeString(1, contents.substr(at));
}

}  // namespace

Acad::ErrorStatus AcDbMText::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbMText");
    filer->writePoint3d(10, location_);
    filer->writeDouble(40, textHeight_);
    filer->writeDouble(41, width_);
    if (definedHeight_ != 0 || showsDefaults(filer)) filer->writeDouble(46, definedHeight_);
    filer->writeInt16(71, static_cast<int16_t>(attachment_));
    filer->writeInt16(72, static_cast<int16_t>(flow_));
    writeContents(filer, contents_);
    sg::model::writeNameOf(filer, 7, style_, L"Standard");
    sg::model::writeNormal(filer, normal_);
    filer->writeVector3d(11, direction_);
    if (showsDefaults(filer)) {
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
