#include "platform/db/attribute.h"

#include "host/model/curves/filing_groups.h"
#include "host/model/entities/text_drawing.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/names.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, 0, 0, L"ATTDEF", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbAttribute, AcDbText, 0, 0, L"ATTRIB", nullptr)

namespace {

enum Flag : int16_t { kInvisible = 1, kConstant = 2, kVerifiable = 4, kPreset = 8 };

// Of what the class files; its group comes again, behind the others, with another meaning.
constexpr int16_t kVersion = 0;

int16_t withFlag(int16_t flags, int16_t flag, bool on) {
    return static_cast<int16_t>(on ? flags | flag : flags & ~flag);
}

}  // namespace

// ---- Definitions --------------------------------------------------------------------------------

AcDbAttributeDefinition::AcDbAttributeDefinition() = default;
AcDbAttributeDefinition::AcDbAttributeDefinition(const AcGePoint3d& position, const wchar_t* text,
                                                 const wchar_t* tag, const wchar_t* prompt,
                                                 AcDbObjectId style)
    : AcDbText(position, text, style),
      prompt_(prompt == nullptr ? L"" : prompt),
      tag_(sg::model::foldName(tag == nullptr ? L"" : tag)) {}
AcDbAttributeDefinition::~AcDbAttributeDefinition() = default;

Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const wchar_t* prompt) {
    assertWriteEnabled();
    prompt_ = prompt == nullptr ? L"" : prompt;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setTag(const wchar_t* tag) {
    if (tag == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    tag_ = sg::model::foldName(tag);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setInvisible(bool invisible) {
    assertWriteEnabled();
    flags_ = withFlag(flags_, kInvisible, invisible);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setConstant(bool constant) {
    assertWriteEnabled();
    flags_ = withFlag(flags_, kConstant, constant);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setVerifiable(bool verifiable) {
    assertWriteEnabled();
    flags_ = withFlag(flags_, kVerifiable, verifiable);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setPreset(bool preset) {
    assertWriteEnabled();
    flags_ = withFlag(flags_, kPreset, preset);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setFieldLength(uint16_t length) {
    assertWriteEnabled();
    fieldLength_ = length;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setLockPositionInBlock(bool lock) {
    assertWriteEnabled();
    lockPosition_ = lock;
    return Acad::eOk;
}

bool AcDbAttributeDefinition::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    sg::model::drawLine(*draw, isConstant() ? textString() : tag_,
                        {position(), normal(), rotation()}, drawingStyle());
    return true;
}

Acad::ErrorStatus AcDbAttributeDefinition::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbText::dwgOutFields(filer);
    filer->writeString(prompt_);
    filer->writeString(tag_);
    filer->writeInt16(flags_);
    filer->writeUInt16(fieldLength_);
    return filer->writeBool(lockPosition_);
}

Acad::ErrorStatus AcDbAttributeDefinition::dwgInFields(AcDbDwgFiler* filer) {
    AcDbText::dwgInFields(filer);
    filer->readString(prompt_);
    filer->readString(tag_);
    filer->readInt16(&flags_);
    filer->readUInt16(&fieldLength_);
    return filer->readBool(&lockPosition_);
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfOutFields(AcDbDxfFiler* filer) const {
    dxfOutText(filer);
    filer->writeString(100, L"AcDbAttributeDefinition");
    if (filer->dwgVersion() >= AcDb::kDHL_1024) filer->writeInt16(280, kVersion);
    filer->writeString(3, prompt_);
    filer->writeString(2, tag_);
    filer->writeInt16(70, flags_);
    const bool all = sg::model::showsDefaults(filer);
    if (all || fieldLength_ != 0) filer->writeInt16(73, static_cast<int16_t>(fieldLength_));
    if (all || verticalMode() != AcDb::kTextBase) {
        filer->writeInt16(74, static_cast<int16_t>(verticalMode()));
    }
    if (filer->dwgVersion() >= AcDb::kDHL_1021) filer->writeInt16(280, lockPosition_ ? 1 : 0);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = dxfInText(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbAttributeDefinition")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 3:
                prompt_ = fields.text();
                break;
            case 2:
                tag_ = sg::model::foldName(fields.text());
                break;
            case 70:
                flags_ = static_cast<int16_t>(fields.integer());
                break;
            case 73:
                fieldLength_ = static_cast<uint16_t>(fields.integer());
                break;
            case 74:
                takeVerticalMode(fields.integer());
                break;
            case 280:
                lockPosition_ = fields.flag();
                break;
            default:
                break;
        }
    }
    if (filer->filerType() == AcDb::kBagFiler) adjustAlignment(filer->database());
    return filer->filerStatus();
}

// ---- Attributes ---------------------------------------------------------------------------------

AcDbAttribute::AcDbAttribute() = default;
AcDbAttribute::AcDbAttribute(const AcGePoint3d& position, const wchar_t* text, const wchar_t* tag,
                             AcDbObjectId style)
    : AcDbText(position, text, style), tag_(sg::model::foldName(tag == nullptr ? L"" : tag)) {}
AcDbAttribute::~AcDbAttribute() = default;

Acad::ErrorStatus AcDbAttribute::setTag(const wchar_t* tag) {
    if (tag == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    tag_ = sg::model::foldName(tag);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setInvisible(bool invisible) {
    assertWriteEnabled();
    flags_ = withFlag(flags_, kInvisible, invisible);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setFieldLength(uint16_t length) {
    assertWriteEnabled();
    fieldLength_ = length;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                                       const AcGeMatrix3d& blockTransform) {
    if (definition == nullptr) return Acad::eNullEntityPointer;
    assertWriteEnabled();
    setPropertiesFrom(definition);
    setTextString(definition->textString().c_str());
    setTextStyle(definition->textStyle());
    setNormal(definition->normal());
    setThickness(definition->thickness());
    setHeight(definition->height());
    setWidthFactor(definition->widthFactor());
    setOblique(definition->oblique());
    setRotation(definition->rotation());
    mirrorInX(definition->isMirroredInX());
    mirrorInY(definition->isMirroredInY());
    setPosition(definition->position());
    setHorizontalMode(definition->horizontalMode());
    setVerticalMode(definition->verticalMode());
    if (!isDefaultAlignment()) setAlignmentPoint(definition->alignmentPoint());
    setPosition(definition->position());
    tag_ = definition->tag();
    flags_ = 0;
    flags_ = withFlag(flags_, kInvisible, definition->isInvisible());
    flags_ = withFlag(flags_, kConstant, definition->isConstant());
    flags_ = withFlag(flags_, kVerifiable, definition->isVerifiable());
    flags_ = withFlag(flags_, kPreset, definition->isPreset());
    fieldLength_ = definition->fieldLength();
    lockPosition_ = definition->lockPositionInBlock();
    return transformBy(blockTransform);
}

bool AcDbAttribute::subWorldDraw(AcGiWorldDraw* draw) {
    return isInvisible() ? true : AcDbText::subWorldDraw(draw);
}

Acad::ErrorStatus AcDbAttribute::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbText::dwgOutFields(filer);
    filer->writeString(tag_);
    filer->writeInt16(flags_);
    filer->writeUInt16(fieldLength_);
    return filer->writeBool(lockPosition_);
}

Acad::ErrorStatus AcDbAttribute::dwgInFields(AcDbDwgFiler* filer) {
    AcDbText::dwgInFields(filer);
    filer->readString(tag_);
    filer->readInt16(&flags_);
    filer->readUInt16(&fieldLength_);
    return filer->readBool(&lockPosition_);
}

Acad::ErrorStatus AcDbAttribute::dxfOutFields(AcDbDxfFiler* filer) const {
    dxfOutText(filer);
    filer->writeString(100, L"AcDbAttribute");
    if (filer->dwgVersion() >= AcDb::kDHL_1024) filer->writeInt16(280, kVersion);
    filer->writeString(2, tag_);
    filer->writeInt16(70, flags_);
    const bool all = sg::model::showsDefaults(filer);
    if (all || fieldLength_ != 0) filer->writeInt16(73, static_cast<int16_t>(fieldLength_));
    if (all || verticalMode() != AcDb::kTextBase) {
        filer->writeInt16(74, static_cast<int16_t>(verticalMode()));
    }
    if (filer->dwgVersion() >= AcDb::kDHL_1021) filer->writeInt16(280, lockPosition_ ? 1 : 0);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbAttribute::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = dxfInText(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbAttribute")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 2:
                tag_ = sg::model::foldName(fields.text());
                break;
            case 70:
                flags_ = static_cast<int16_t>(fields.integer());
                break;
            case 73:
                fieldLength_ = static_cast<uint16_t>(fields.integer());
                break;
            case 74:
                takeVerticalMode(fields.integer());
                break;
            case 280:
                lockPosition_ = fields.flag();
                break;
            default:
                break;
        }
    }
    if (filer->filerType() == AcDb::kBagFiler) adjustAlignment(filer->database());
    return filer->filerStatus();
}
