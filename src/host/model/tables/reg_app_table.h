#pragma once

#include "platform/db/symbol_table.h"

// An application that keeps extended data in the drawing, by its name.
class SG_API AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord)
    AcDbRegAppTableRecord();
    ~AcDbRegAppTableRecord() override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

class SG_API AcDbRegAppTable : public AcDbSymbolTableOf<AcDbRegAppTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTable)
    AcDbRegAppTable();
    ~AcDbRegAppTable() override;
};
