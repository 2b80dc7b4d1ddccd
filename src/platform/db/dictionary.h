#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/db/object.h"

// What a dictionary does when a copy brings a name that it has.
namespace AcDb {
enum DuplicateRecordCloning : int16_t {
    kDrcNotApplicable = 0,
    kDrcIgnore = 1,  // keeps what is there
    kDrcReplace = 2,
    kDrcXrefMangleName = 3,
    kDrcMangleName = 4,
    kDrcUnmangleName = 5,
};
}  // namespace AcDb

// Walks the entries in the order in which they were set.
class SG_API AcDbDictionaryIterator {
  public:
    virtual ~AcDbDictionaryIterator() = default;
    virtual const wchar_t* name() const = 0;
    virtual AcDbObjectId objectId() const = 0;
    virtual Acad::ErrorStatus getObject(AcDbObject*& object, AcDb::OpenMode mode) const = 0;
    virtual bool done() const = 0;
    virtual bool next() = 0;  // false when it was the last
};

// Objects under names, which differ by more than case.
class SG_API AcDbDictionary : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDictionary)
    AcDbDictionary();
    ~AcDbDictionary() override;

    // eKeyNotFound. The erased ones are not found.
    Acad::ErrorStatus getAt(const wchar_t* name, AcDbObjectId& id) const;
    Acad::ErrorStatus getAt(const wchar_t* name, AcDbObject*& object, AcDb::OpenMode mode) const;
    template <class Class>
    Acad::ErrorStatus getAt(const wchar_t* name, Class*& object, AcDb::OpenMode mode) const {
        object = nullptr;
        AcDbObjectId id;
        const Acad::ErrorStatus status = getAt(name, id);
        return status != Acad::eOk ? status : acdbOpenObject(object, id, mode);
    }
    Acad::ErrorStatus nameAt(AcDbObjectId id, std::wstring& name) const;
    bool has(const wchar_t* name) const;
    bool has(AcDbObjectId id) const;
    uint32_t numEntries() const;

    // Gives the object to the dictionary's database and makes the dictionary its owner; it stays
    // open for write. An object that had the name is erased. eInvalidKey for an empty name.
    Acad::ErrorStatus setAt(const wchar_t* name, AcDbObject* object, AcDbObjectId& id);
    // The entry goes; the object is erased when the dictionary owns it hard. eKeyNotFound.
    Acad::ErrorStatus remove(const wchar_t* name);
    Acad::ErrorStatus remove(AcDbObjectId id);
    bool setName(const wchar_t* oldName, const wchar_t* newName);

    bool isTreatElementsAsHard() const { return hard_; }
    void setTreatElementsAsHard(bool hard);
    AcDb::DuplicateRecordCloning mergeStyle() const { return mergeStyle_; }
    void setMergeStyle(AcDb::DuplicateRecordCloning style);

    std::unique_ptr<AcDbDictionaryIterator> newIterator() const;
    // The object of the entry behind that of this one; of the first entry for the null id. Null
    // behind the last, and for what is not in the dictionary.
    AcDbObjectId objectAfter(AcDbObjectId id) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    Acad::ErrorStatus subErase(bool erasing) override;

  private:
    friend struct sg::model::ObjectAccess;
    struct Entries;

    std::unique_ptr<Entries> entries_;
    bool hard_ = false;
    AcDb::DuplicateRecordCloning mergeStyle_ = AcDb::kDrcIgnore;
};
