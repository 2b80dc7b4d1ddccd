#include "platform/db/layer_table.h"

#include <algorithm>
#include <array>

#include "host/model/core/dwg_form.h"
#include "host/model/core/line_weights.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, 0, 0, L"LAYER", nullptr)
ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, 0)

namespace {

constexpr uint16_t kWhite = 7;
constexpr int16_t kFrozen = 1;
constexpr int16_t kFrozenInNewViewports = 2;
constexpr int16_t kLocked = 4;

int16_t withFlag(int16_t flags, int16_t flag, bool on) {
    return static_cast<int16_t>(on ? flags | flag : flags & ~flag);
}

// The description stands in the extended data of this application, as its second text.
constexpr const wchar_t* kDescriptionApplication = L"AcAecLayerStandard";

}  // namespace

AcDbLayerTable::AcDbLayerTable() = default;
AcDbLayerTable::~AcDbLayerTable() = default;

AcDbLayerTableRecord::AcDbLayerTableRecord() {
    color_.setColorIndex(kWhite);
}
AcDbLayerTableRecord::~AcDbLayerTableRecord() = default;

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
    if (frozen && database() != nullptr && database()->clayer() == objectId()) {
        return Acad::eInvalidLayer;
    }
    assertWriteEnabled();
    standardFlags_ = withFlag(standardFlags_, kFrozen, frozen);
    return Acad::eOk;
}

void AcDbLayerTableRecord::setIsOff(bool off) {
    assertWriteEnabled();
    off_ = off;
}

void AcDbLayerTableRecord::setVPDFLT(bool frozen) {
    assertWriteEnabled();
    standardFlags_ = withFlag(standardFlags_, kFrozenInNewViewports, frozen);
}

void AcDbLayerTableRecord::setIsLocked(bool locked) {
    assertWriteEnabled();
    standardFlags_ = withFlag(standardFlags_, kLocked, locked);
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
    assertWriteEnabled();
    plottable_ = plottable;
    return Acad::eOk;
}

void AcDbLayerTableRecord::setColor(const AcCmColor& color) {
    assertWriteEnabled();
    color_ = color;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId linetype) {
    assertWriteEnabled();
    linetype_ = linetype;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) {
    if (weight != AcDb::kLnWtByLwDefault && !sg::model::isLineWidth(weight)) {
        return Acad::eOutOfRange;
    }
    assertWriteEnabled();
    lineWeight_ = weight;
    return Acad::eOk;
}

void AcDbLayerTableRecord::setTransparency(uint32_t transparency) {
    assertWriteEnabled();
    transparency_ = transparency;
}

std::wstring AcDbLayerTableRecord::plotStyleName() const {
    if (database() == nullptr || database()->plotStyleMode()) {
        // Where plot styles follow colours, the layer's is that of its colour.
        return L"Color_" + std::to_wstring(color_.colorIndex());
    }
    AcDbDictionary* styles = nullptr;
    std::wstring name;
    if (acdbOpenObject(styles, database()->plotStyleNameDictionaryId()) == Acad::eOk) {
        styles->nameAt(plotStyle_, name);
        styles->close();
    }
    return name;
}

Acad::ErrorStatus AcDbLayerTableRecord::setPlotStyleName(const wchar_t* name) {
    if (database() == nullptr) return Acad::eNotInDatabase;
    AcDbDictionary* styles = nullptr;
    Acad::ErrorStatus status = acdbOpenObject(styles, database()->plotStyleNameDictionaryId());
    if (status != Acad::eOk) return status;
    AcDbObjectId style;
    status = styles->getAt(name, style);
    styles->close();
    return status != Acad::eOk ? status : setPlotStyleName(style);
}

Acad::ErrorStatus AcDbLayerTableRecord::setPlotStyleName(AcDbObjectId style) {
    if (database() == nullptr) return Acad::eNotInDatabase;
    if (database()->plotStyleMode()) return Acad::eInvalidInput;
    takePlotStyle(style);
    return Acad::eOk;
}

void AcDbLayerTableRecord::takePlotStyle(AcDbObjectId style) {
    assertWriteEnabled();
    plotStyle_ = style;
}

void AcDbLayerTableRecord::setMaterialId(AcDbObjectId material) {
    assertWriteEnabled();
    material_ = material;
}

std::wstring AcDbLayerTableRecord::description() const {
    resbuf* const data = xData(kDescriptionApplication);
    std::wstring found;
    for (const resbuf* node = data; node != nullptr; node = node->rbnext) {
        if (node->restype == 1000 && node->resval.rstring != nullptr) found = node->resval.rstring;
    }
    acutRelRb(data);
    return found;
}

void AcDbLayerTableRecord::setDescription(const wchar_t* description) {
    AcDbDatabase* const home = database();
    if (home != nullptr) sg::model::registerApplication(*home, kDescriptionApplication);
    resbuf* const data = acutBuildList(1001, kDescriptionApplication, 1000, L"", 1000,
                                       description == nullptr ? L"" : description, 0);
    setXData(data);
    acutRelRb(data);
}

namespace {

// A DWG object has the settings and the line weight in one number.
enum Packed : int16_t {
    kPackedFrozen = 1,
    kPackedOff = 2,
    kPackedFrozenInNew = 4,
    kPackedLocked = 8,
    kPackedPlottable = 16,
};
constexpr int kWeightShift = 5;
constexpr int kWeightMask = 0x1F;

int16_t packed(const AcDbLayerTableRecord& layer) {
    int values = sg::model::lineWeightCode(layer.lineWeight()) << kWeightShift;
    if (layer.isFrozen()) values |= kPackedFrozen;
    if (layer.isOff()) values |= kPackedOff;
    if (layer.VPDFLT()) values |= kPackedFrozenInNew;
    if (layer.isLocked()) values |= kPackedLocked;
    if (layer.isPlottable()) values |= kPackedPlottable;
    return static_cast<int16_t>(values);
}

int16_t readPacked(AcDbDwgFiler& filer) {
    int16_t values = 0;
    filer.readInt16(&values);
    return values;
}

// Before release 2000 the settings are bits of their own, and nothing else is there.
int16_t readSettings(AcDbDwgFiler& filer) {
    int values = kPackedPlottable | sg::model::lineWeightCode(AcDb::kLnWtByLwDefault)
                                        << kWeightShift;
    for (const Packed setting : {kPackedFrozen, kPackedOff, kPackedFrozenInNew, kPackedLocked}) {
        bool isSet = false;
        filer.readBool(&isSet);
        if (isSet) values |= setting;
    }
    return static_cast<int16_t>(values);
}

}  // namespace

void AcDbLayerTableRecord::takePacked(int16_t values) {
    const auto has = [&](Packed value) { return (values & value) != 0; };
    off_ = has(kPackedOff);
    plottable_ = has(kPackedPlottable);
    standardFlags_ = withFlag(standardFlags_, kFrozen, has(kPackedFrozen));
    standardFlags_ = withFlag(standardFlags_, kFrozenInNewViewports, has(kPackedFrozenInNew));
    standardFlags_ = withFlag(standardFlags_, kLocked, has(kPackedLocked));
    lineWeight_ =
        sg::model::lineWeightOf(static_cast<uint8_t>(values >> kWeightShift & kWeightMask));
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbSymbolTableRecord::dwgOutFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    if (inFile) {
        filer->writeInt16(packed(*this));
    } else {
        filer->writeInt16(static_cast<int16_t>(lineWeight_));
        filer->writeUInt32(transparency_);
        filer->writeBool(off_);
        filer->writeBool(plottable_);
    }
    sg::model::writeColor(filer, color_);
    filer->writeHardPointerId(plotStyle_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) filer->writeHardPointerId(material_);
    filer->writeHardPointerId(linetype_);
    if (!inFile || sg::model::isBefore(filer, AcDb::kDHL_1027)) return filer->filerStatus();
    return filer->writeHardPointerId(AcDbObjectId());
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    const bool isOld = inFile && sg::model::isBefore(filer, AcDb::kDHL_1015);
    if (inFile) {
        takePacked(isOld ? readSettings(*filer) : readPacked(*filer));
    } else {
        sg::model::readInt16As(filer, lineWeight_);
        filer->readUInt32(&transparency_);
        filer->readBool(&off_);
        filer->readBool(&plottable_);
    }
    sg::model::readColor(filer, color_);
    if (!isOld) filer->readHardPointerId(&plotStyle_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) filer->readHardPointerId(&material_);
    filer->readHardPointerId(&linetype_);
    if (!inFile || sg::model::isBefore(filer, AcDb::kDHL_1027)) return filer->filerStatus();
    AcDbHardPointerId visualStyle;
    return filer->readHardPointerId(&visualStyle);
}

Acad::ErrorStatus AcDbLayerTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, L"AcDbLayerTableRecord");
    filer->writeString(2, name());
    filer->writeInt16(70, standardFlags_);
    const auto index = static_cast<int16_t>(color_.colorIndex());
    filer->writeInt16(62, static_cast<int16_t>(off_ ? -index : index));
    if (color_.isByColor()) filer->writeInt32(420, static_cast<int32_t>(color_.rgb()));
    sg::model::writeNameOf(filer, 6, linetype_, L"Continuous");
    if (!plottable_ || filer->filerType() == AcDb::kBagFiler) filer->writeBool(290, plottable_);
    filer->writeInt16(370, static_cast<int16_t>(lineWeight_));
    if (!plotStyle_.isNull()) filer->writeObjectId(390, plotStyle_);
    if (!material_.isNull()) filer->writeObjectId(347, material_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayerTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbLayerTableRecord")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 2:
                takeName(fields.text());
                break;
            case 70:
                standardFlags_ = static_cast<int16_t>(fields.integer());
                break;
            case 62:
                off_ = fields.integer() < 0;
                if (!color_.isByColor()) {
                    color_.setColorIndex(static_cast<uint16_t>(std::abs(fields.integer())));
                }
                break;
            case 420:
                sg::model::setTrueColor(color_, fields.integer());
                break;
            case 6:
                linetype_ = sg::model::recordNamed(filer->database(), sg::model::NamedIn::linetypes,
                                                   fields.text());
                break;
            case 290:
                plottable_ = fields.flag();
                break;
            case 370:
                lineWeight_ = static_cast<AcDb::LineWeight>(fields.integer());
                break;
            case 390:
                plotStyle_ = fields.objectId();
                break;
            case 347:
                material_ = fields.objectId();
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}
