#include "platform/db/attribute.h"

#include "base/text.h"
#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/entities/text_drawing.h"
#include "host/model/tables/filing.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, 0, 0, L"ATTDEF", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbAttribute, AcDbText, 0, 0, L"ATTRIB", nullptr)

namespace {

// Of what the class files; its group comes again, behind the others, with another meaning.
constexpr int16_t kVersion = 0;

// What kind of text the value is, in files from release 2018 on.
constexpr uint8_t kOneLine = 1;

void writeVersion(AcDbDwgFiler* filer) {
    if (filer->dwgForm() == nullptr || sg::model::isBefore(filer, AcDb::kDHL_1024)) return;
    filer->writeUInt8(kVersion);
}

void readVersion(AcDbDwgFiler* filer) {
    uint8_t version = 0;
    if (filer->dwgForm() == nullptr || sg::model::isBefore(filer, AcDb::kDHL_1024)) return;
    filer->readUInt8(&version);
}

}  // namespace

// ---- What both have -----------------------------------------------------------------------------

namespace sg::model {

void AttributeFields::set(Flag flag, bool on) {
    flags = static_cast<int16_t>(on ? flags | flag : flags & ~flag);
}

void AttributeFields::setTag(const wchar_t* text) {
    tag = upperCased(text == nullptr ? L"" : text);
}

Acad::ErrorStatus AttributeFields::dwgOut(AcDbDwgFiler* filer) const {
    const bool inFile = filer->dwgForm() != nullptr;
    writeVersion(filer);
    if (inFile && !isBefore(filer, AcDb::kDHL_1032)) filer->writeUInt8(kOneLine);
    filer->writeString(tag);
    filer->writeUInt16(fieldLength);
    if (inFile) {
        filer->writeUInt8(static_cast<uint8_t>(flags));
    } else {
        filer->writeInt16(flags);
    }
    if (isBefore(filer, AcDb::kDHL_1021)) return filer->filerStatus();
    return filer->writeBool(lockPosition);
}

Acad::ErrorStatus AttributeFields::dwgIn(AcDbDwgFiler* filer) {
    const bool inFile = filer->dwgForm() != nullptr;
    readVersion(filer);
    if (inFile && !isBefore(filer, AcDb::kDHL_1032)) {
        uint8_t kind = kOneLine;
        filer->readUInt8(&kind);
        // A text of several lines, which attributes here have none of.
        if (kind > kOneLine) return Acad::eMakeMeProxy;
    }
    filer->readString(tag);
    filer->readUInt16(&fieldLength);
    if (inFile) {
        uint8_t bits = 0;
        filer->readUInt8(&bits);
        flags = bits;
    } else {
        filer->readInt16(&flags);
    }
    lockPosition = false;
    if (isBefore(filer, AcDb::kDHL_1021)) return filer->filerStatus();
    return filer->readBool(&lockPosition);
}

void AttributeFields::dxfOut(AcDbDxfFiler* filer, int verticalMode) const {
    filer->writeString(2, tag);
    filer->writeInt16(70, flags);
    const bool all = sg::model::showsDefaults(filer);
    if (all || fieldLength != 0) filer->writeInt16(73, static_cast<int16_t>(fieldLength));
    if (all || verticalMode != AcDb::kTextBase) {
        filer->writeInt16(74, static_cast<int16_t>(verticalMode));
    }
    if (filer->dwgVersion() >= AcDb::kDHL_1021) filer->writeInt16(280, lockPosition ? 1 : 0);
}

void AttributeFields::takeGroup(const FieldReader& field) {
    switch (field.code()) {
        case 2:
            setTag(field.text().c_str());
            break;
        case 70:
            flags = static_cast<int16_t>(field.integer());
            break;
        case 73:
            fieldLength = static_cast<uint16_t>(field.integer());
            break;
        case 280:
            lockPosition = field.flag();
            break;
        default:
            break;
    }
}

}  // namespace sg::model

// ---- Definitions --------------------------------------------------------------------------------

AcDbAttributeDefinition::AcDbAttributeDefinition() = default;
AcDbAttributeDefinition::AcDbAttributeDefinition(const AcGePoint3d& position, const wchar_t* text,
                                                 const wchar_t* tag, const wchar_t* prompt,
                                                 AcDbObjectId style)
    : AcDbText(position, text, style), prompt_(prompt == nullptr ? L"" : prompt) {
    fields_.setTag(tag);
}
AcDbAttributeDefinition::~AcDbAttributeDefinition() = default;

Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const wchar_t* prompt) {
    assertWriteEnabled();
    prompt_ = prompt == nullptr ? L"" : prompt;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setTag(const wchar_t* tag) {
    if (tag == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    fields_.setTag(tag);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setInvisible(bool invisible) {
    assertWriteEnabled();
    fields_.set(Fields::kInvisible, invisible);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setConstant(bool constant) {
    assertWriteEnabled();
    fields_.set(Fields::kConstant, constant);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setVerifiable(bool verifiable) {
    assertWriteEnabled();
    fields_.set(Fields::kVerifiable, verifiable);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setPreset(bool preset) {
    assertWriteEnabled();
    fields_.set(Fields::kPreset, preset);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setFieldLength(uint16_t length) {
    assertWriteEnabled();
    fields_.fieldLength = length;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttributeDefinition::setLockPositionInBlock(bool lock) {
    assertWriteEnabled();
    fields_.lockPosition = lock;
    return Acad::eOk;
}

bool AcDbAttributeDefinition::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    sg::model::drawLine(*draw, isConstant() ? textString() : tag(),
                        {position(), normal(), rotation()}, drawingStyle());
    return true;
}

Acad::ErrorStatus AcDbAttributeDefinition::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbText::dwgOutFields(filer);
    fields_.dwgOut(filer);
    writeVersion(filer);
    return filer->writeString(prompt_);
}

Acad::ErrorStatus AcDbAttributeDefinition::dwgInFields(AcDbDwgFiler* filer) {
    AcDbText::dwgInFields(filer);
    const Acad::ErrorStatus status = fields_.dwgIn(filer);
    if (status != Acad::eOk) return status;
    readVersion(filer);
    return filer->readString(prompt_);
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfOutFields(AcDbDxfFiler* filer) const {
    dxfOutText(filer);
    filer->writeString(100, L"AcDbAttributeDefinition");
    if (filer->dwgVersion() >= AcDb::kDHL_1024) filer->writeInt16(280, kVersion);
    filer->writeString(3, prompt_);
    fields_.dxfOut(filer, verticalMode());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = dxfInText(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbAttributeDefinition")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 3) prompt_ = fields.text();
        if (fields.code() == 74) takeVerticalMode(fields.integer());
        fields_.takeGroup(fields);
    }
    if (filer->filerType() == AcDb::kBagFiler) adjustAlignment(filer->database());
    return filer->filerStatus();
}

// ---- Attributes ---------------------------------------------------------------------------------

AcDbAttribute::AcDbAttribute() = default;
AcDbAttribute::AcDbAttribute(const AcGePoint3d& position, const wchar_t* text, const wchar_t* tag,
                             AcDbObjectId style)
    : AcDbText(position, text, style) {
    fields_.setTag(tag);
}
AcDbAttribute::~AcDbAttribute() = default;

Acad::ErrorStatus AcDbAttribute::setTag(const wchar_t* tag) {
    if (tag == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    fields_.setTag(tag);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setInvisible(bool invisible) {
    assertWriteEnabled();
    fields_.set(Fields::kInvisible, invisible);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setFieldLength(uint16_t length) {
    assertWriteEnabled();
    fields_.fieldLength = length;
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
    fields_ = definition->fields_;
    return transformBy(blockTransform);
}

bool AcDbAttribute::subWorldDraw(AcGiWorldDraw* draw) {
    return isInvisible() ? true : AcDbText::subWorldDraw(draw);
}

Acad::ErrorStatus AcDbAttribute::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbText::dwgOutFields(filer);
    return fields_.dwgOut(filer);
}

Acad::ErrorStatus AcDbAttribute::dwgInFields(AcDbDwgFiler* filer) {
    AcDbText::dwgInFields(filer);
    return fields_.dwgIn(filer);
}

Acad::ErrorStatus AcDbAttribute::dxfOutFields(AcDbDxfFiler* filer) const {
    dxfOutText(filer);
    filer->writeString(100, L"AcDbAttribute");
    if (filer->dwgVersion() >= AcDb::kDHL_1024) filer->writeInt16(280, kVersion);
    fields_.dxfOut(filer, verticalMode());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbAttribute::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = dxfInText(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbAttribute")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 74) takeVerticalMode(fields.integer());
        fields_.takeGroup(fields);
    }
    if (filer->filerType() == AcDb::kBagFiler) adjustAlignment(filer->database());
    return filer->filerStatus();
}
