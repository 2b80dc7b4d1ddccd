#include "platform/db/group.h"

#include <algorithm>

#include "host/model/tables/filing.h"
#include "platform/db/database.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbGroup, AcDbObject, 0, 0, L"GROUP", nullptr)

namespace {

// The group as a persistent reactor of its entities.
void tie(AcDbObjectId entity, AcDbObjectId group, bool tied) {
    AcDbObject* opened = nullptr;
    if (group.isNull() || acdbOpenAcDbObject(opened, entity, AcDb::kForWrite, true) != Acad::eOk) {
        return;
    }
    if (tied) {
        opened->addPersistentReactor(group);
    } else {
        opened->removePersistentReactor(group);
    }
    opened->close();
}

}  // namespace

AcDbGroup::AcDbGroup(const wchar_t* description)
    : description_(description == nullptr ? L"" : description) {}
AcDbGroup::~AcDbGroup() = default;

std::wstring AcDbGroup::name() const {
    std::wstring found;
    AcDbDictionary* groups = nullptr;
    if (acdbOpenObject(groups, ownerId()) == Acad::eOk) {
        groups->nameAt(objectId(), found);
        groups->close();
    }
    return found;
}

void AcDbGroup::setDescription(const wchar_t* description) {
    assertWriteEnabled();
    description_ = description == nullptr ? L"" : description;
}

void AcDbGroup::setAnonymous(bool anonymous) {
    assertWriteEnabled();
    anonymous_ = anonymous;
}

void AcDbGroup::setSelectable(bool selectable) {
    assertWriteEnabled();
    selectable_ = selectable;
}

Acad::ErrorStatus AcDbGroup::insertAt(uint32_t index, AcDbObjectId entity) {
    if (entity.isNull()) return Acad::eNullObjectId;
    if (entity.database() != database()) return Acad::eWrongDatabase;
    if (std::find(entities_.begin(), entities_.end(), entity) != entities_.end()) {
        return Acad::eDuplicateKey;
    }
    if (index > entities_.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    entities_.insert(entities_.begin() + index, AcDbHardPointerId(entity));
    tie(entity, objectId(), true);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::append(AcDbObjectId entity) {
    return insertAt(static_cast<uint32_t>(entities_.size()), entity);
}

Acad::ErrorStatus AcDbGroup::append(const AcDbObjectIdArray& entities) {
    for (int i = 0; i < entities.length(); ++i) {
        const Acad::ErrorStatus status = append(entities[i]);
        if (status == Acad::eOk) continue;
        while (i-- > 0)
            remove(entities[i]);
        return status;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::remove(AcDbObjectId entity) {
    const auto found = std::find(entities_.begin(), entities_.end(), entity);
    if (found == entities_.end()) return Acad::eInvalidInput;
    assertWriteEnabled();
    entities_.erase(found);
    tie(entity, objectId(), false);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::clear() {
    assertWriteEnabled();
    for (const AcDbObjectId entity : entities_)
        tie(entity, objectId(), false);
    entities_.clear();
    return Acad::eOk;
}

uint32_t AcDbGroup::numEntities() const {
    assertReadEnabled();
    return static_cast<uint32_t>(std::count_if(entities_.begin(), entities_.end(),
                                               [](AcDbObjectId id) { return !id.isErased(); }));
}

uint32_t AcDbGroup::allEntityIds(AcDbObjectIdArray& ids) const {
    assertReadEnabled();
    ids.removeAll();
    for (const AcDbObjectId id : entities_) {
        if (!id.isErased()) ids.append(id);
    }
    return static_cast<uint32_t>(ids.length());
}

bool AcDbGroup::has(const AcDbEntity* entity) const {
    uint32_t index = 0;
    return entity != nullptr && getIndex(entity->objectId(), index) == Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::getIndex(AcDbObjectId entity, uint32_t& index) const {
    assertReadEnabled();
    const auto found = std::find(entities_.begin(), entities_.end(), entity);
    if (found == entities_.end()) return Acad::eKeyNotFound;
    index = static_cast<uint32_t>(found - entities_.begin());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbObject::subErase(erasing);
    if (status != Acad::eOk) return status;
    for (const AcDbObjectId entity : entities_)
        tie(entity, objectId(), !erasing);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeString(description_);
    filer->writeInt16(anonymous_ ? 1 : 0);
    filer->writeInt16(selectable_ ? 1 : 0);
    filer->writeUInt32(static_cast<uint32_t>(entities_.size()));
    for (const AcDbHardPointerId& entity : entities_)
        filer->writeHardPointerId(entity);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    uint32_t count = 0;
    int16_t isAnonymous = 0;
    int16_t isSelectable = 0;
    filer->readString(description_);
    filer->readInt16(&isAnonymous);
    filer->readInt16(&isSelectable);
    anonymous_ = isAnonymous != 0;
    selectable_ = isSelectable != 0;
    filer->readUInt32(&count);
    entities_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        AcDbHardPointerId entity;
        filer->readHardPointerId(&entity);
        if (!entity.isNull()) entities_.push_back(entity);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbGroup");
    filer->writeString(300, description_);
    filer->writeInt16(70, anonymous_ ? 1 : 0);
    filer->writeInt16(71, selectable_ ? 1 : 0);
    for (const AcDbHardPointerId& entity : entities_) {
        if (!entity.isErased()) filer->writeObjectId(340, entity);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbGroup")) return Acad::eBadDxfSequence;
    entities_.clear();
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 300:
                description_ = fields.text();
                break;
            case 70:
                anonymous_ = fields.flag();
                break;
            case 71:
                selectable_ = fields.flag();
                break;
            case 340:
                if (!fields.objectId().isNull()) entities_.push_back(fields.objectId());
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}
