#include "platform/db/text_style_table.h"

#include <numbers>

#include "host/model/core/dwg_form.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, 0, 0, L"STYLE", nullptr)
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable, 0)

namespace {

constexpr int16_t kShapes = 1;
constexpr int16_t kVertical = 4;
constexpr uint8_t kBackward = 2;
constexpr uint8_t kUpsideDown = 4;
constexpr double kSteepest = 85 * std::numbers::pi / 180;

// The extended data in which drawing files keep an outline font's typeface.
constexpr const wchar_t* kFontApplication = L"ACAD";
constexpr int32_t kBoldBit = 0x2000000;
constexpr int32_t kItalicBit = 0x1000000;

}  // namespace

AcDbTextStyleTable::AcDbTextStyleTable() = default;
AcDbTextStyleTable::~AcDbTextStyleTable() = default;
AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() = default;
AcDbTextStyleTableRecord::~AcDbTextStyleTableRecord() = default;

void AcDbTextStyleTableRecord::setFileName(const wchar_t* name) {
    assertWriteEnabled();
    fileName_ = name == nullptr ? L"" : name;
}

void AcDbTextStyleTableRecord::setBigFontFileName(const wchar_t* name) {
    assertWriteEnabled();
    bigFontFileName_ = name == nullptr ? L"" : name;
}

AcDbTextStyleTableRecord::Font AcDbTextStyleTableRecord::font() const {
    Font found;
    resbuf* const data = xData(kFontApplication);
    for (const resbuf* node = data; node != nullptr; node = node->rbnext) {
        if (node->restype == 1000 && node->resval.rstring != nullptr) {
            found.typeface = node->resval.rstring;
        } else if (node->restype == 1071) {
            found.bold = (node->resval.rlong & kBoldBit) != 0;
            found.italic = (node->resval.rlong & kItalicBit) != 0;
        }
    }
    acutRelRb(data);
    return found;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFont(const wchar_t* typeface, bool bold,
                                                    bool italic) {
    assertWriteEnabled();
    const int32_t bits = (bold ? kBoldBit : 0) | (italic ? kItalicBit : 0);
    resbuf* const data = typeface == nullptr || *typeface == 0
                             ? acutBuildList(1001, kFontApplication, 0)
                             : acutBuildList(1001, kFontApplication, 1000, typeface, 1071, bits, 0);
    const Acad::ErrorStatus status = setXData(data);
    acutRelRb(data);
    return status;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) {
    if (!(size >= 0)) return Acad::eOutOfRange;
    assertWriteEnabled();
    textSize_ = size;
    return Acad::eOk;
}

void AcDbTextStyleTableRecord::setPriorSize(double size) {
    assertWriteEnabled();
    priorSize_ = size;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double scale) {
    if (!(scale > 0)) return Acad::eOutOfRange;
    assertWriteEnabled();
    xScale_ = scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setObliquingAngle(double angle) {
    if (!(angle >= -kSteepest && angle <= kSteepest)) return Acad::eOutOfRange;
    assertWriteEnabled();
    obliquingAngle_ = angle;
    return Acad::eOk;
}

void AcDbTextStyleTableRecord::setIsVertical(bool vertical) {
    assertWriteEnabled();
    standardFlags_ =
        static_cast<int16_t>(vertical ? standardFlags_ | kVertical : standardFlags_ & ~kVertical);
}

void AcDbTextStyleTableRecord::setIsShapeFile(bool shapes) {
    assertWriteEnabled();
    standardFlags_ =
        static_cast<int16_t>(shapes ? standardFlags_ | kShapes : standardFlags_ & ~kShapes);
}

void AcDbTextStyleTableRecord::setFlagBits(uint8_t bits) {
    assertWriteEnabled();
    flagBits_ = bits;
}

AcGiTextStyle AcDbTextStyleTableRecord::giTextStyle() const {
    AcGiTextStyle style;
    style.fontFile = fileName_;
    style.bigFontFile = bigFontFileName_;
    const Font outline = font();
    style.typeface = outline.typeface;
    style.bold = outline.bold;
    style.italic = outline.italic;
    style.height = textSize_ == 0 ? 1 : textSize_;
    style.widthFactor = xScale_;
    style.oblique = obliquingAngle_;
    style.backward = (flagBits_ & kBackward) != 0;
    style.upsideDown = (flagBits_ & kUpsideDown) != 0;
    style.vertical = isVertical();
    return style;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbSymbolTableRecord::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) {
        filer->writeBool((standardFlags_ & kShapes) != 0);
        filer->writeBool((standardFlags_ & kVertical) != 0);
    }
    filer->writeDouble(textSize_);
    filer->writeDouble(xScale_);
    filer->writeDouble(obliquingAngle_);
    filer->writeUInt8(flagBits_);
    filer->writeDouble(priorSize_);
    filer->writeString(fileName_);
    return filer->writeString(bigFontFileName_);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) {
        for (const int16_t flag : {kShapes, kVertical}) {
            bool isSet = false;
            filer->readBool(&isSet);
            if (isSet) standardFlags_ = static_cast<int16_t>(standardFlags_ | flag);
        }
    }
    filer->readDouble(&textSize_);
    filer->readDouble(&xScale_);
    filer->readDouble(&obliquingAngle_);
    filer->readUInt8(&flagBits_);
    filer->readDouble(&priorSize_);
    filer->readString(fileName_);
    return filer->readString(bigFontFileName_);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, L"AcDbTextStyleTableRecord");
    filer->writeString(2, name());
    filer->writeInt16(70, standardFlags_);
    filer->writeDouble(40, textSize_);
    filer->writeDouble(41, xScale_);
    filer->writeDouble(50, obliquingAngle_);
    filer->writeInt16(71, flagBits_);
    filer->writeDouble(42, priorSize_);
    filer->writeString(3, fileName_);
    return filer->writeString(4, bigFontFileName_);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbTextStyleTableRecord")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 2:
                takeName(fields.text());
                break;
            case 70:
                standardFlags_ = static_cast<int16_t>(fields.integer());
                break;
            case 40:
                textSize_ = fields.real();
                break;
            case 41:
                xScale_ = fields.real();
                break;
            case 50:
                obliquingAngle_ = fields.real();
                break;
            case 71:
                flagBits_ = static_cast<uint8_t>(fields.integer());
                break;
            case 42:
                priorSize_ = fields.real();
                break;
            case 3:
                fileName_ = fields.text();
                break;
            case 4:
                bigFontFileName_ = fields.text();
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}
