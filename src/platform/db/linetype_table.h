#pragma once

#include <string>
#include <vector>

#include "platform/db/symbol_table.h"
#include "platform/ge/vector2d.h"

// A linetype: dashes, dots and gaps that repeat along a curve, some with a shape or a text.
class SG_API AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord)
    AcDbLinetypeTableRecord();
    ~AcDbLinetypeTableRecord() override;

    struct Dash {
        double length = 0;  // a gap is negative, a dot 0; drawing units before scaling
        int16_t flags = 0;  // 1: rotation is absolute, 2: a text, 4: a shape
        int16_t shapeNumber = 0;
        AcDbHardPointerId style;
        double scale = 1;
        double rotation = 0;
        AcGeVector2d offset;
        std::wstring text;
    };

    const std::wstring& comments() const { return comments_; }
    void setComments(const wchar_t* comments);
    double patternLength() const { return patternLength_; }
    const std::vector<Dash>& dashes() const { return dashes_; }
    // Sets the pattern's length to the sum of the dashes' and gaps' lengths.
    void setDashes(std::vector<Dash> dashes);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    friend struct sg::model::ObjectAccess;

    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);

    std::wstring comments_;
    double patternLength_ = 0;
    std::vector<Dash> dashes_;
};

class SG_API AcDbLinetypeTable : public AcDbSymbolTableOf<AcDbLinetypeTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTable)
    AcDbLinetypeTable();
    ~AcDbLinetypeTable() override;

  protected:
    std::span<const wchar_t* const> fixedRecords() const override;
};
