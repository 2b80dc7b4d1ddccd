#pragma once

#include <string>
#include <vector>

#include "platform/db/color.h"
#include "platform/db/dictionary.h"

// An object that is nothing but its place in a dictionary: plot style names are.
class SG_API AcDbPlaceHolder : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbPlaceHolder)
    AcDbPlaceHolder();
    ~AcDbPlaceHolder() override;
};

// A value under a name in the dictionary of drawing variables.
class SG_API AcDbDictionaryVar : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDictionaryVar)
    AcDbDictionaryVar();
    ~AcDbDictionaryVar() override;

    const std::wstring& value() const { return value_; }
    void setValue(const wchar_t* value);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    int16_t schema_ = 0;
    std::wstring value_;
};

// A dictionary that answers one of its objects for names that it does not have.
class SG_API AcDbDictionaryWithDefault : public AcDbDictionary {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDictionaryWithDefault)
    AcDbDictionaryWithDefault();
    ~AcDbDictionaryWithDefault() override;

    AcDbObjectId defaultId() const { return default_; }
    void setDefaultId(AcDbObjectId id);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    AcDbHardPointerId default_;
};

// A style of lines that run side by side.
class SG_API AcDbMlineStyle : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbMlineStyle)
    AcDbMlineStyle();
    ~AcDbMlineStyle() override;

    struct Element {
        double offset = 0;
        AcCmColor color;
        AcDbHardPointerId linetype;  // null: by layer
    };

    const std::wstring& name() const { return name_; }
    void setName(const wchar_t* name);
    const std::vector<Element>& elements() const { return elements_; }
    void setElements(std::vector<Element> elements);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    std::wstring name_, description_;
    int16_t flags_ = 0;
    AcCmColor fill_;
    double startAngle_;
    double endAngle_;
    std::vector<Element> elements_;
};
