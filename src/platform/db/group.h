#pragma once

#include <string>
#include <vector>

#include "platform/db/dictionary.h"
#include "platform/db/entity.h"

// Entities under a name, which picking one of them selects together. Groups stand in the group
// dictionary; their entities know them as persistent reactors.
class SG_API AcDbGroup : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbGroup)
    explicit AcDbGroup(const wchar_t* description = L"");
    ~AcDbGroup() override;

    // The key under which it stands in its dictionary; empty when it stands in none.
    std::wstring name() const;
    const std::wstring& description() const { return description_; }
    void setDescription(const wchar_t* description);
    bool isAnonymous() const { return anonymous_; }
    void setAnonymous(bool anonymous);
    bool isSelectable() const { return selectable_; }
    void setSelectable(bool selectable);

    // An entity may be in it once only: eDuplicateKey. eNullObjectId, eWrongDatabase.
    Acad::ErrorStatus append(AcDbObjectId entity);
    Acad::ErrorStatus append(const AcDbObjectIdArray& entities);  // all or none
    Acad::ErrorStatus insertAt(uint32_t index, AcDbObjectId entity);
    Acad::ErrorStatus remove(AcDbObjectId entity);  // eInvalidInput when it is not in it
    Acad::ErrorStatus clear();

    uint32_t numEntities() const;  // erased ones not counted
    uint32_t allEntityIds(AcDbObjectIdArray& ids) const;
    bool has(const AcDbEntity* entity) const;
    Acad::ErrorStatus getIndex(AcDbObjectId entity, uint32_t& index) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    Acad::ErrorStatus subErase(bool erasing) override;

  private:
    std::wstring description_;
    bool anonymous_ = false;
    bool selectable_ = true;
    std::vector<AcDbHardPointerId> entities_;
};
