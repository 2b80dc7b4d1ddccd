#pragma once

#include <functional>
#include <vector>

#include "platform/db/object.h"

// The order in which a block's entities are drawn, where it is not that of their handles: each
// entity in it is drawn as if it had another one's handle. It stands in the extension dictionary of
// the block, under "ACAD_SORTENTS".
class SG_API AcDbSortentsTable : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSortentsTable)
    AcDbSortentsTable();
    ~AcDbSortentsTable() override;

    AcDbObjectId blockId() const { return block_; }
    void setBlockId(AcDbObjectId block);

    // Entities that are not in the block give eInvalidInput, and nothing changes. Several keep
    // their order among themselves.
    Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& entities);
    Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& entities);
    Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& entities, AcDbObjectId target);
    Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& entities, AcDbObjectId target);
    Acad::ErrorStatus swapOrder(AcDbObjectId left, AcDbObjectId right);

    // They change places among themselves, so that the first of them is drawn first.
    Acad::ErrorStatus setRelativeDrawOrder(const AcDbObjectIdArray& entities);

    bool firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second) const;
    // The block's entities, erased ones left out, bottom first.
    Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& ids) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    friend struct sg::model::ObjectAccess;

    using Placement = std::function<bool(std::vector<AcDbObjectId>&)>;

    Acad::ErrorStatus reorder(const AcDbObjectIdArray& entities, const Placement& placement);
    Acad::ErrorStatus moveBeside(const AcDbObjectIdArray& entities, AcDbObjectId target,
                                 size_t behind);

    struct Entry {
        AcDbSoftPointerId entity;
        AcDbHandle sortHandle;
    };
    AcDbSoftPointerId block_;
    std::vector<Entry> entries_;
};
