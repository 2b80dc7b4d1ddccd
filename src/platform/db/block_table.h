#pragma once

#include <memory>
#include <string>

#include "platform/db/entity.h"
#include "platform/db/symbol_table.h"

class AcDbSortentsTable;

// Walks a block's entities in the order in which they were appended.
class SG_API AcDbBlockTableRecordIterator {
  public:
    virtual ~AcDbBlockTableRecordIterator() = default;
    virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
    virtual bool done() const = 0;
    virtual void step(bool forward = true, bool skipErased = true) = 0;
    virtual Acad::ErrorStatus getEntityId(AcDbObjectId& id) const = 0;
    virtual Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode = AcDb::kForRead,
                                        bool openErased = false) const = 0;
    virtual Acad::ErrorStatus seek(AcDbObjectId id) = 0;  // eKeyNotFound
};

// A block: entities under a name, with a base point. The drawing's spaces are blocks too.
class SG_API AcDbBlockTableRecord : public AcDbSymbolTableRecord {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord)
    AcDbBlockTableRecord();
    ~AcDbBlockTableRecord() override;

    // Gives a new entity to the block; it stays open for write. The block is open for write.
    // eAlreadyInDb, eNotInDatabase.
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
    Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
    // Takes entities over from the blocks in which they stand. eNullObjectId, eWrongDatabase, and
    // what opening them for write answers; those before the failing one have moved.
    Acad::ErrorStatus assumeOwnershipOf(const AcDbObjectIdArray& entities);
    std::unique_ptr<AcDbBlockTableRecordIterator> newIterator(bool atBeginning = true,
                                                              bool skipErased = true) const;
    // The ids of its entities, erased ones too, without opening anything.
    const std::vector<AcDbObjectId>& entityIds() const;

    AcGePoint3d origin() const { return origin_; }
    Acad::ErrorStatus setOrigin(const AcGePoint3d& origin);
    std::wstring comments() const;
    Acad::ErrorStatus setComments(const wchar_t* comments);

    bool isAnonymous() const;
    bool isLayout() const { return !layout_.isNull(); }
    AcDbObjectId getLayoutId() const { return layout_; }
    Acad::ErrorStatus setLayoutId(AcDbObjectId layout);
    bool hasAttributeDefinitions() const;
    bool isFromExternalReference() const;
    bool explodable() const { return explodable_; }
    void setExplodable(bool explodable);
    int16_t blockInsertUnits() const { return units_; }  // as INSUNITS
    void setBlockInsertUnits(int16_t units);
    bool scaleUniformly() const { return scaleUniformly_; }
    void setScaleUniformly(bool uniformly);

    // The table that says in which order the block's entities are drawn. eKeyNotFound when there is
    // none and it is not to be made.
    Acad::ErrorStatus getSortentsTable(AcDbSortentsTable*& table,
                                       AcDb::OpenMode mode = AcDb::kForRead,
                                       bool createIfNecessary = false);
    // The block references, anywhere in the database, that show this block directly.
    Acad::ErrorStatus getBlockReferenceIds(AcDbObjectIdArray& ids) const;

    // The entities that begin and end the block in drawing files.
    Acad::ErrorStatus openBlockBegin(AcDbEntity*& begin, AcDb::OpenMode mode) const;
    Acad::ErrorStatus openBlockEnd(AcDbEntity*& end, AcDb::OpenMode mode) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    Acad::ErrorStatus subErase(bool erasing) override;  // eCannotBeErasedByCaller: in use
    void subEnteredTable() override;

  private:
    friend struct sg::model::ObjectAccess;
    struct Contents;

    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);

    std::unique_ptr<Contents> contents_;
    AcGePoint3d origin_;
    AcDbHardPointerId layout_;
    int16_t units_ = 0;
    bool explodable_ = true;
    bool scaleUniformly_ = false;
};

class SG_API AcDbBlockTable : public AcDbSymbolTableOf<AcDbBlockTableRecord> {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTable)
    AcDbBlockTable();
    ~AcDbBlockTable() override;

  protected:
    std::span<const wchar_t* const> fixedRecords() const override;
};

extern SG_API const wchar_t* const ACDB_MODEL_SPACE;  // "*Model_Space"
extern SG_API const wchar_t* const ACDB_PAPER_SPACE;  // "*Paper_Space"
