#pragma once

#include <string>

#include "platform/db/symbol_table.h"
#include "platform/gi/draw.h"

class SG_API AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord)
    AcDbTextStyleTableRecord();
    ~AcDbTextStyleTableRecord() override;

    const std::wstring& fileName() const { return fileName_; }
    void setFileName(const wchar_t* name);
    const std::wstring& bigFontFileName() const { return bigFontFileName_; }
    void setBigFontFileName(const wchar_t* name);
    // An outline font, which goes before the font file; empty for a stroke font. It stands in the
    // record's extended data, where drawing files have it.
    struct Font {
        std::wstring typeface;
        bool bold = false;
        bool italic = false;
    };
    Font font() const;
    Acad::ErrorStatus setFont(const wchar_t* typeface, bool bold, bool italic);
    double textSize() const { return textSize_; }  // 0: each text has its own height
    Acad::ErrorStatus setTextSize(double size);    // eOutOfRange below 0
    double priorSize() const { return priorSize_; }
    void setPriorSize(double size);
    double xScale() const { return xScale_; }
    Acad::ErrorStatus setXScale(double scale);  // eOutOfRange unless above 0
    double obliquingAngle() const { return obliquingAngle_; }
    Acad::ErrorStatus setObliquingAngle(double angle);  // eOutOfRange beyond 85 degrees either way
    bool isVertical() const { return (standardFlags_ & 4) != 0; }
    void setIsVertical(bool vertical);
    bool isShapeFile() const { return (standardFlags_ & 1) != 0; }
    void setIsShapeFile(bool shapes);
    uint8_t flagBits() const { return flagBits_; }  // 2 backward, 4 upside down
    void setFlagBits(uint8_t bits);

    // What drawing text in this style needs; the height is textSize(), or 1 where that is 0.
    AcGiTextStyle giTextStyle() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool mayBeNameless() const override { return isShapeFile(); }

  private:
    friend struct sg::model::ObjectAccess;

    std::wstring fileName_, bigFontFileName_;
    double textSize_ = 0;
    double priorSize_ = 0.2;
    double xScale_ = 1;
    double obliquingAngle_ = 0;
    uint8_t flagBits_ = 0;
};

class SG_API AcDbTextStyleTable : public AcDbSymbolTableOf<AcDbTextStyleTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTable)
    AcDbTextStyleTable();
    ~AcDbTextStyleTable() override;
};
