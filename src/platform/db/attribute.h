#pragma once

#include <string>

#include "platform/db/text.h"

// A text that every reference of a block gets a copy of, to be filled in: its template in the
// block.
class SG_API AcDbAttributeDefinition : public AcDbText {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition)
    AcDbAttributeDefinition();
    AcDbAttributeDefinition(const AcGePoint3d& position, const wchar_t* text, const wchar_t* tag,
                            const wchar_t* prompt, AcDbObjectId style = AcDbObjectId());
    ~AcDbAttributeDefinition() override;

    const std::wstring& prompt() const { return prompt_; }
    Acad::ErrorStatus setPrompt(const wchar_t* prompt);
    const std::wstring& tag() const { return tag_; }
    Acad::ErrorStatus setTag(const wchar_t* tag);  // kept in upper case
    bool isInvisible() const { return (flags_ & 1) != 0; }
    Acad::ErrorStatus setInvisible(bool invisible);
    bool isConstant() const { return (flags_ & 2) != 0; }
    Acad::ErrorStatus setConstant(bool constant);
    bool isVerifiable() const { return (flags_ & 4) != 0; }
    Acad::ErrorStatus setVerifiable(bool verifiable);
    bool isPreset() const { return (flags_ & 8) != 0; }
    Acad::ErrorStatus setPreset(bool preset);
    uint16_t fieldLength() const { return fieldLength_; }
    Acad::ErrorStatus setFieldLength(uint16_t length);
    bool lockPositionInBlock() const { return lockPosition_; }
    Acad::ErrorStatus setLockPositionInBlock(bool lock);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;  // shows its tag

  private:
    std::wstring prompt_, tag_;
    int16_t flags_ = 0;
    uint16_t fieldLength_ = 0;
    bool lockPosition_ = false;
};

// The copy that belongs to a block reference.
class SG_API AcDbAttribute : public AcDbText {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
    AcDbAttribute();
    AcDbAttribute(const AcGePoint3d& position, const wchar_t* text, const wchar_t* tag,
                  AcDbObjectId style = AcDbObjectId());
    ~AcDbAttribute() override;

    const std::wstring& tag() const { return tag_; }
    Acad::ErrorStatus setTag(const wchar_t* tag);
    bool isInvisible() const { return (flags_ & 1) != 0; }
    Acad::ErrorStatus setInvisible(bool invisible);
    bool isConstant() const { return (flags_ & 2) != 0; }
    bool isVerifiable() const { return (flags_ & 4) != 0; }
    bool isPreset() const { return (flags_ & 8) != 0; }
    uint16_t fieldLength() const { return fieldLength_; }
    Acad::ErrorStatus setFieldLength(uint16_t length);
    bool lockPositionInBlock() const { return lockPosition_; }

    // Takes over everything from the definition, moved by the block's transform.
    Acad::ErrorStatus setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                            const AcGeMatrix3d& blockTransform);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;

  private:
    std::wstring tag_;
    int16_t flags_ = 0;
    uint16_t fieldLength_ = 0;
    bool lockPosition_ = false;
};
