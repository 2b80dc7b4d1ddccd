#pragma once

#include "host/model/tables/record_fields.h"
#include "platform/db/symbol_table.h"

// A record that is a list of fields behind its marker. The fields' codes are those of drawing
// files.
class SG_API AcDbFieldsTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbFieldsTableRecord)
    ~AcDbFieldsTableRecord() override;

    const sg::model::RecordFields& fields() const { return fields_; }
    // For changing; open for write.
    sg::model::RecordFields& fields();

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    AcDbFieldsTableRecord(const wchar_t* marker, std::span<const sg::model::FieldRow> rows,
                          std::span<const sg::model::DwgStep> steps);

  private:
    const wchar_t* marker_;
    std::span<const sg::model::DwgStep> steps_;
    sg::model::RecordFields fields_;
};

// A named view: 10 centre, 11 direction to the eye, 12 target, 40 height, 41 width, 42 lens length,
// 50 twist.
class SG_API AcDbViewTableRecord : public AcDbFieldsTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbViewTableRecord)
    AcDbViewTableRecord();
    ~AcDbViewTableRecord() override;
};

// A part of the screen with its view: 10 and 11 its corners (0 to 1), 12 centre, 16 direction to
// the eye, 17 target, 40 height, 41 width through height, 51 twist. Those named "*Active" are the
// current arrangement.
class SG_API AcDbViewportTableRecord : public AcDbFieldsTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord)
    AcDbViewportTableRecord();
    ~AcDbViewportTableRecord() override;
};

// A user coordinate system: 10 origin, 11 x axis, 12 y axis, in world coordinates.
class SG_API AcDbUCSTableRecord : public AcDbFieldsTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord)
    AcDbUCSTableRecord();
    ~AcDbUCSTableRecord() override;
};

class SG_API AcDbViewTable : public AcDbSymbolTableOf<AcDbViewTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbViewTable)
    AcDbViewTable();
    ~AcDbViewTable() override;
};

class SG_API AcDbViewportTable : public AcDbSymbolTableOf<AcDbViewportTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbViewportTable)
    AcDbViewportTable();
    ~AcDbViewportTable() override;

  protected:
    bool allowsSameNames() const override { return true; }  // "*Active"
};

class SG_API AcDbUCSTable : public AcDbSymbolTableOf<AcDbUCSTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbUCSTable)
    AcDbUCSTable();
    ~AcDbUCSTable() override;
};
