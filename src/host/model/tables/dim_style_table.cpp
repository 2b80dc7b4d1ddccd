#include "host/model/tables/dim_style_table.h"

#include <algorithm>
#include <stdexcept>

#include "host/model/core/dwg_form.h"
#include "host/model/tables/dim_style_steps.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"

using sg::model::FieldRow;

ACRX_DXF_DEFINE_MEMBERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, 0, 0, L"DIMSTYLE", nullptr)
ACRX_CONS_DEFINE_MEMBERS(AcDbDimStyleTable, AcDbSymbolTable, 0)

namespace {

std::span<const FieldRow> rows() {
    static const std::vector<FieldRow> kRows = [] {
        std::vector<FieldRow> made;
        for (const sg::model::DimVariableRow& row : sg::model::dimVariableRows()) {
            made.push_back({row.variable.code, row.variable.initial, true});
        }
        return made;
    }();
    return kRows;
}

}  // namespace

AcDbDimStyleTable::AcDbDimStyleTable() = default;
AcDbDimStyleTable::~AcDbDimStyleTable() = default;

// A DWG object, as groups do, names the records once more.
Acad::ErrorStatus AcDbDimStyleTable::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbSymbolTable::dwgOutFields(filer);
    if (status != Acad::eOk || filer->dwgForm() == nullptr) return status;
    constexpr int kMost = 255;
    int left = std::min(numRecords(), kMost);
    filer->writeUInt8(static_cast<uint8_t>(left));
    for (auto each = newIterator(); !each->done() && left-- > 0; each->step())
        filer->writeHardPointerId(each->getRecordId());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDimStyleTable::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTable::dwgInFields(filer);
    if (status != Acad::eOk || filer->dwgForm() == nullptr) return status;
    if (sg::model::isBefore(filer, AcDb::kDHL_1015)) return status;
    uint8_t count = 0;
    filer->readUInt8(&count);
    while (count-- > 0 && filer->filerStatus() == Acad::eOk)
        sg::model::readReference(*filer, sg::model::Reference::hardPointer);
    return filer->filerStatus();
}

// The table names its records once more.
Acad::ErrorStatus AcDbDimStyleTable::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTable::dxfOutFields(filer);
    if (filer->filerType() != AcDb::kFileFiler) return filer->filerStatus();
    filer->writeString(100, L"AcDbDimStyleTable");
    filer->writeInt16(71, static_cast<int16_t>(numRecords()));
    for (auto each = newIterator(); !each->done(); each->step())
        filer->writeObjectId(340, each->getRecordId());
    return filer->filerStatus();
}

AcDbDimStyleTableRecord::AcDbDimStyleTableRecord() : values_(rows()) {}
AcDbDimStyleTableRecord::~AcDbDimStyleTableRecord() = default;

const sg::model::VariableValue& AcDbDimStyleTableRecord::value(size_t place) const {
    return values_.at(place);
}

void AcDbDimStyleTableRecord::setValue(size_t place, sg::model::VariableValue value) {
    assertWriteEnabled();
    values_.set(rows()[place].code, std::move(value));
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbSymbolTableRecord::dwgOutFields(filer);
    values_.writeDwg(filer, sg::model::dimStyleSteps(*filer));
    if (filer->dwgForm() == nullptr) return filer->filerStatus();
    return filer->writeBool((standardFlags_ & 1) != 0);
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    values_.readDwg(filer, sg::model::dimStyleSteps(*filer));
    if (filer->dwgForm() == nullptr) return filer->filerStatus();
    bool isSet = false;
    filer->readBool(&isSet);
    if (isSet) standardFlags_ = static_cast<int16_t>(standardFlags_ | 1);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, L"AcDbDimStyleTableRecord");
    filer->writeString(2, name());
    filer->writeInt16(70, standardFlags_);
    values_.writeDxf(filer);
    return filer->filerStatus();
}

// Release 12 has the blocks of arrows by their names, which no later release has under these codes.
bool AcDbDimStyleTableRecord::takeArrow(AcDbDatabase* database,
                                        const sg::model::FieldReader& field) {
    constexpr std::pair<int, int> kArrows[] = {{5, 342}, {6, 343}, {7, 344}};
    for (const auto& [old, code] : kArrows) {
        if (field.code() != old) continue;
        values_.set(code,
                    sg::model::recordNamed(database, sg::model::NamedIn::blocks, field.text()));
        return true;
    }
    return false;
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbDimStyleTableRecord")) return Acad::eBadDxfSequence;
    sg::model::FieldReader fields(filer);
    bool flagsRead = false;
    while (fields.next()) {
        if (fields.code() == 2) {
            takeName(fields.text());
        } else if (fields.code() == 70 && !flagsRead) {
            // The first 70 is the record's flags; a later one is the fill colour of texts.
            standardFlags_ = static_cast<int16_t>(fields.integer());
            flagsRead = true;
        } else if (!takeArrow(filer->database(), fields)) {
            values_.takeDxf(fields);
        }
    }
    return filer->filerStatus();
}
