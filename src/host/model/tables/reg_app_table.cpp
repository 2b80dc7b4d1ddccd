#include "host/model/tables/reg_app_table.h"

#include "host/model/tables/filing.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, 0, 0, L"APPID", nullptr)
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable, 0)

AcDbRegAppTable::AcDbRegAppTable() = default;
AcDbRegAppTable::~AcDbRegAppTable() = default;
AcDbRegAppTableRecord::AcDbRegAppTableRecord() = default;
AcDbRegAppTableRecord::~AcDbRegAppTableRecord() = default;

// A DWG object has a byte more, which is always 0.
Acad::ErrorStatus AcDbRegAppTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer);
    return filer->dwgForm() == nullptr ? status : filer->writeUInt8(0);
}

Acad::ErrorStatus AcDbRegAppTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer);
    uint8_t unused = 0;
    return filer->dwgForm() == nullptr ? status : filer->readUInt8(&unused);
}

Acad::ErrorStatus AcDbRegAppTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, L"AcDbRegAppTableRecord");
    filer->writeString(2, name());
    return filer->writeInt16(70, standardFlags_);
}

Acad::ErrorStatus AcDbRegAppTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbRegAppTableRecord")) return Acad::eBadDxfSequence;
    sg::model::FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 2) takeName(fields.text());
        if (fields.code() == 70) standardFlags_ = static_cast<int16_t>(fields.integer());
    }
    return filer->filerStatus();
}
