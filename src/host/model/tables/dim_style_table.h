#pragma once

#include "host/model/tables/dim_variables.h"
#include "host/model/tables/record_fields.h"
#include "platform/db/symbol_table.h"

// A dimension style: a value for each dimension variable.
class SG_API AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord)
    AcDbDimStyleTableRecord();
    ~AcDbDimStyleTableRecord() override;

    // By its place in sg::model::dimVariableRows(); the type must be the variable's.
    const sg::model::VariableValue& value(size_t place) const;
    void setValue(size_t place, sg::model::VariableValue value);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    bool takeArrow(AcDbDatabase* database, const sg::model::FieldReader& field);

    sg::model::RecordFields values_;
};

class SG_API AcDbDimStyleTable : public AcDbSymbolTableOf<AcDbDimStyleTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDimStyleTable)
    AcDbDimStyleTable();
    ~AcDbDimStyleTable() override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};
