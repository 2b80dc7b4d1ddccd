#include "host/model/tables/dim_style_table.h"

#include <stdexcept>

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
    return values_.writeDwg(filer);
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    return values_.readDwg(filer);
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
