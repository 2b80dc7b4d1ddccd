#pragma once

#include <memory>
#include <span>
#include <string>

#include "platform/db/object.h"

class AcDbSymbolTableRecord;

// Walks the records in the order in which they were added.
class SG_API AcDbSymbolTableIterator {
  public:
    virtual ~AcDbSymbolTableIterator() = default;
    virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
    virtual bool done() const = 0;
    virtual void step(bool forward = true, bool skipErased = true) = 0;
    virtual AcDbObjectId getRecordId() const = 0;
    virtual Acad::ErrorStatus getRecordId(AcDbObjectId& id) const = 0;
    virtual Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record,
                                        AcDb::OpenMode mode = AcDb::kForRead,
                                        bool openErased = false) const = 0;
    // Puts it at this record; eKeyNotFound.
    virtual Acad::ErrorStatus seek(AcDbObjectId id) = 0;
};

// One of a database's tables of named records. Names differ by more than case; a block whose name
// starts with "*" may share it with others that are erased.
class SG_API AcDbSymbolTable : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSymbolTable)
    ~AcDbSymbolTable() override;

    // eKeyNotFound. `getErased`: an erased record is found too when no other has the name.
    Acad::ErrorStatus getAt(const wchar_t* name, AcDbObjectId& id, bool getErased = false) const;
    Acad::ErrorStatus getAt(const wchar_t* name, AcDbSymbolTableRecord*& record,
                            AcDb::OpenMode mode = AcDb::kForRead, bool openErased = false) const;
    bool has(const wchar_t* name) const;
    bool has(AcDbObjectId id) const;
    int numRecords() const;  // erased ones not counted

    // Gives a record, with its name set, to the table; it stays open for write. The table is open
    // for write. eDuplicateRecordName, eInvalidSymbolTableName, eWrongObjectType.
    Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
    Acad::ErrorStatus add(AcDbSymbolTableRecord* record);

    std::unique_ptr<AcDbSymbolTableIterator> newIterator(bool atBeginning = true,
                                                         bool skipErased = true) const;

    // The class of its records.
    virtual const AcRxClass* recordClass() const = 0;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    AcDbSymbolTable();
    Acad::ErrorStatus subErase(bool erasing) override;
    // True for a table in which several records may have a name.
    virtual bool allowsSameNames() const { return false; }
    // The names of records that every drawing has, and DWG files keep apart from the others.
    virtual std::span<const wchar_t* const> fixedRecords() const { return {}; }

  private:
    friend struct sg::model::ObjectAccess;
    struct Records;

    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);

    std::unique_ptr<Records> records_;
};

// A record of a symbol table. Its DXF fields are the marker of this class alone; a class of records
// files the name (2) and the flags (70) behind its own marker.
class SG_API AcDbSymbolTableRecord : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord)
    ~AcDbSymbolTableRecord() override;

    const std::wstring& name() const { return name_; }
    Acad::ErrorStatus getName(std::wstring& name) const;
    // eInvalidSymbolTableName for an empty name, one of over 255 units and one with any of
    // <>/\":;?*|,=` (but for the "*" that starts an anonymous block's); eDuplicateRecordName.
    Acad::ErrorStatus setName(const wchar_t* name);

    bool isDependent() const { return (standardFlags_ & 16) != 0; }  // on an external reference
    bool isResolved() const { return (standardFlags_ & 32) != 0; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    AcDbSymbolTableRecord();
    Acad::ErrorStatus subErase(bool erasing) override;
    // Called when the record has come to its table.
    virtual void subEnteredTable() {}
    // True for a record that its table takes without a name.
    virtual bool mayBeNameless() const { return false; }

    // Takes a name as a drawing file has it, without the tests of setName().
    void takeName(std::wstring name) { name_ = std::move(name); }

    // As group 70 of drawing files has them, the bits of all tables and those of the class.
    int16_t standardFlags_ = 0;

  private:
    friend struct sg::model::ObjectAccess;

    std::wstring name_;
};

// A table whose records are of one class.
template <class Record>
class AcDbSymbolTableOf : public AcDbSymbolTable {
  public:
    using AcDbSymbolTable::getAt;
    Acad::ErrorStatus getAt(const wchar_t* name, Record*& record,
                            AcDb::OpenMode mode = AcDb::kForRead, bool openErased = false) const {
        record = nullptr;
        AcDbObjectId id;
        const Acad::ErrorStatus status = getAt(name, id, openErased);
        return status != Acad::eOk ? status : acdbOpenObject(record, id, mode, openErased);
    }
    const AcRxClass* recordClass() const override { return Record::desc(); }
};
