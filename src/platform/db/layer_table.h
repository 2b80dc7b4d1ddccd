#pragma once

#include "platform/db/color.h"
#include "platform/db/entity.h"
#include "platform/db/symbol_table.h"

class SG_API AcDbLayerTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord)
    AcDbLayerTableRecord();
    ~AcDbLayerTableRecord() override;

    bool isFrozen() const { return (standardFlags_ & 1) != 0; }
    Acad::ErrorStatus setIsFrozen(bool frozen);  // eInvalidLayer for the current layer
    bool isOff() const { return off_; }
    void setIsOff(bool off);
    bool VPDFLT() const { return (standardFlags_ & 2) != 0; }  // frozen in new viewports
    void setVPDFLT(bool frozen);
    bool isLocked() const { return (standardFlags_ & 4) != 0; }
    void setIsLocked(bool locked);
    bool isPlottable() const { return plottable_; }
    Acad::ErrorStatus setIsPlottable(bool plottable);

    AcCmColor color() const { return color_; }
    void setColor(const AcCmColor& color);
    AcDbObjectId linetypeObjectId() const { return linetype_; }  // null: Continuous
    Acad::ErrorStatus setLinetypeObjectId(AcDbObjectId linetype);
    AcDb::LineWeight lineWeight() const { return lineWeight_; }
    // eOutOfRange for what is no line weight of drawing files (0, 5, 9, 13, ... 211, and default).
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);
    uint32_t transparency() const { return transparency_; }
    void setTransparency(uint32_t transparency);

    // The plot style names of the record's database. eNotInDatabase for a record outside one,
    // eKeyNotFound, eInvalidInput for a drawing whose plot styles follow colours.
    std::wstring plotStyleName() const;
    AcDbObjectId plotStyleNameId() const { return plotStyle_; }
    Acad::ErrorStatus setPlotStyleName(const wchar_t* name);
    Acad::ErrorStatus setPlotStyleName(AcDbObjectId style);
    // As a file has it, whatever the drawing's plot styles follow.
    void takePlotStyle(AcDbObjectId style);
    AcDbObjectId materialId() const { return material_; }
    void setMaterialId(AcDbObjectId material);
    std::wstring description() const;
    void setDescription(const wchar_t* description);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    friend struct sg::model::ObjectAccess;

    void takePacked(int16_t values);

    AcCmColor color_;  // index 7
    AcDbHardPointerId linetype_;
    AcDbHardPointerId plotStyle_;
    AcDbHardPointerId material_;
    AcDb::LineWeight lineWeight_ = AcDb::kLnWtByLwDefault;
    uint32_t transparency_ = 0;
    bool off_ = false;
    bool plottable_ = true;
};

class SG_API AcDbLayerTable : public AcDbSymbolTableOf<AcDbLayerTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTable)
    AcDbLayerTable();
    ~AcDbLayerTable() override;
};
