#pragma once

#include <string>

#include "platform/db/text.h"

namespace sg::model {

class FieldReader;

// What a definition and the attributes made from it have alike.
struct AttributeFields {
    enum Flag : int16_t { kInvisible = 1, kConstant = 2, kVerifiable = 4, kPreset = 8 };

    std::wstring tag;  // in upper case
    int16_t flags = 0;
    uint16_t fieldLength = 0;
    bool lockPosition = false;

    bool has(Flag flag) const { return (flags & flag) != 0; }
    void set(Flag flag, bool on);
    void setTag(const wchar_t* text);  // null is empty
    Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
    void dxfOut(AcDbDxfFiler* filer, int verticalMode) const;
    void takeGroup(const FieldReader& field);
};

}  // namespace sg::model

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
    const std::wstring& tag() const { return fields_.tag; }
    Acad::ErrorStatus setTag(const wchar_t* tag);  // kept in upper case
    bool isInvisible() const { return fields_.has(Fields::kInvisible); }
    Acad::ErrorStatus setInvisible(bool invisible);
    bool isConstant() const { return fields_.has(Fields::kConstant); }
    Acad::ErrorStatus setConstant(bool constant);
    bool isVerifiable() const { return fields_.has(Fields::kVerifiable); }
    Acad::ErrorStatus setVerifiable(bool verifiable);
    bool isPreset() const { return fields_.has(Fields::kPreset); }
    Acad::ErrorStatus setPreset(bool preset);
    uint16_t fieldLength() const { return fields_.fieldLength; }
    Acad::ErrorStatus setFieldLength(uint16_t length);
    bool lockPositionInBlock() const { return fields_.lockPosition; }
    Acad::ErrorStatus setLockPositionInBlock(bool lock);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;  // shows its tag

  private:
    friend class AcDbAttribute;
    using Fields = sg::model::AttributeFields;

    std::wstring prompt_;
    Fields fields_;
};

// The copy that belongs to a block reference.
class SG_API AcDbAttribute : public AcDbText {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
    AcDbAttribute();
    AcDbAttribute(const AcGePoint3d& position, const wchar_t* text, const wchar_t* tag,
                  AcDbObjectId style = AcDbObjectId());
    ~AcDbAttribute() override;

    const std::wstring& tag() const { return fields_.tag; }
    Acad::ErrorStatus setTag(const wchar_t* tag);
    bool isInvisible() const { return fields_.has(Fields::kInvisible); }
    Acad::ErrorStatus setInvisible(bool invisible);
    bool isConstant() const { return fields_.has(Fields::kConstant); }
    bool isVerifiable() const { return fields_.has(Fields::kVerifiable); }
    bool isPreset() const { return fields_.has(Fields::kPreset); }
    uint16_t fieldLength() const { return fields_.fieldLength; }
    Acad::ErrorStatus setFieldLength(uint16_t length);
    bool lockPositionInBlock() const { return fields_.lockPosition; }

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
    using Fields = sg::model::AttributeFields;

    Fields fields_;
};
