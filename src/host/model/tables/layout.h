#pragma once

#include "host/model/tables/record_fields.h"
#include "platform/db/object.h"

// How a sheet is printed. The fields' codes are those of drawing files: 1 the set-up's name,
// 2 printer, 4 paper, 40 to 43 margins, 44 and 45 paper size in millimetres, 142 and 143 the scale,
// 72 paper units, 73 rotation.
class SG_API AcDbPlotSettings : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPlotSettings)
    AcDbPlotSettings();
    ~AcDbPlotSettings() override;

    const sg::model::RecordFields& plotFields() const { return plot_; }
    sg::model::RecordFields& plotFields();  // open for write

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    sg::model::RecordFields plot_;
};

// A sheet, or the model's tab: 1 its name, 71 its place among the tabs, 10 and 11 limits, 14 and 15
// extents, 330 its block, 331 its active viewport.
class SG_API AcDbLayout : public AcDbPlotSettings {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLayout)
    AcDbLayout();
    ~AcDbLayout() override;

    const std::wstring& getLayoutName() const;
    int32_t getTabOrder() const;
    AcDbObjectId getBlockTableRecordId() const;
    void setLayout(const wchar_t* name, int32_t tabOrder, AcDbObjectId block);

    const sg::model::RecordFields& fields() const { return fields_; }
    sg::model::RecordFields& fields();  // open for write

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    sg::model::RecordFields fields_;
};
