#include "host/model/core/database_state.h"

#include <algorithm>
#include <stdexcept>

#include "host/model/core/block_contents.h"
#include "host/model/core/database_table.h"
#include "host/model/core/file_origin.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/entity.h"

namespace sg::model {

DatabaseState::DatabaseState(AcDbDatabase& owner, bool withoutDocument)
    : database(owner),
      noDocument(withoutDocument),
      undo(*this),
      transactions(*this),
      header_(std::make_unique<HeaderVariables>()) {
    DatabaseTable* const table = DatabaseTable::the();
    if (table == nullptr) throw std::logic_error("a drawing database is made without a host");
    sequence_ = table->add(this);
}

// The ids stop naming anything before the first object goes, so that no destructor meets another
// object that is gone.
DatabaseState::~DatabaseState() {
    if (DatabaseTable* const table = DatabaseTable::the()) table->remove(sequence_);
    undo.clear();
    forEach([](AcDbObject& object) { delete &object; });
}

DatabaseState* DatabaseState::of(const AcDbObject& object) {
    return DatabaseTable::databaseOf(object.objectId());
}

AcDbObjectId DatabaseState::makeRecord(uint64_t handle) {
    nextHandle_ = std::max(nextHandle_, handle + 1);
    return makeId(sequence_, records.add(handle));
}

AcDbObjectId DatabaseState::findHandle(uint64_t handle) const {
    const uint32_t index = records.findHandle(handle);
    return index == 0 ? AcDbObjectId() : makeId(sequence_, index);
}

namespace {

// What a new entity leaves open is that of its database.
void completeEntity(AcDbEntity& entity, const DatabaseRoots& roots) {
    if (entity.layerId().isNull()) ObjectAccess::setLayer(entity, roots.layerZero);
    if (entity.linetypeId().isNull()) ObjectAccess::setLinetype(entity, roots.byLayerLinetype);
}

}  // namespace

Acad::ErrorStatus DatabaseState::take(AcDbObject& object, uint64_t handle) {
    if (!object.objectId().isNull()) return Acad::eAlreadyInDb;
    if (handle == 0) handle = nextHandle_;
    AcDbObjectId id = findHandle(handle);
    if (id.isNull()) {
        id = makeRecord(handle);
    } else if (id.isValid()) {
        return Acad::eHandleInUse;
    }
    DatabaseTable::recordOf(id)->object = &object;
    ObjectAccess::setId(object, id);
    if (auto* const entity = AcDbEntity::cast(&object)) completeEntity(*entity, roots);
    const AcRxClass* const descriptor = object.isA();
    if (descriptor == AcDbProxyEntity::desc() || descriptor == AcDbProxyObject::desc()) {
        proxies.push_back(id);
    }
    return Acad::eOk;
}

Acad::ErrorStatus DatabaseState::add(AcDbObject& object, uint64_t handle) {
    const Acad::ErrorStatus status = take(object, handle);
    if (status != Acad::eOk) return status;
    ObjectAccess::flags(object) |=
        ObjectAccess::kOpenForWrite | ObjectAccess::kNew | ObjectAccess::kModified;
    undo.objectAppended(object);
    return Acad::eOk;
}

Acad::ErrorStatus DatabaseState::load(AcDbObject& object, uint64_t handle, AcDbObjectId owner) {
    ObjectAccess::setOwner(object, owner);
    return take(object, handle);
}

void DatabaseState::putInPlace(AcDbObjectId id, AcDbObject* object) {
    DatabaseTable::recordOf(id)->object = object;
    ObjectAccess::setId(*object, id);
    tellChange(id);
}

void DatabaseState::discard(AcDbObject* object) {
    if (ObjectAccess::isOpen(*object)) {
        ObjectAccess::flags(*object) |= ObjectAccess::kErased;
        discarded_.emplace_back(object);
    } else {
        delete object;
    }
}

void DatabaseState::forget(AcDbObject& object) {
    const AcDbObjectId id = object.objectId();
    if (const auto* const block = peek<AcDbBlockTableRecord>(object.ownerId())) {
        ObjectAccess::contents(*block).remove(id);
    } else if (const auto* const table = peek<AcDbSymbolTable>(object.ownerId())) {
        ObjectAccess::records(*table).remove(id);
    }
    DatabaseTable::recordOf(id)->object = nullptr;
    discard(&object);
}

void DatabaseState::setErased(AcDbObject& object, bool erased) {
    tellChange(object.objectId());
    uint16_t& flags = ObjectAccess::flags(object);
    flags = static_cast<uint16_t>(erased ? flags | ObjectAccess::kErased
                                         : flags & ~ObjectAccess::kErased);
}

HeaderVariables& DatabaseState::changeHeader() {
    undo.headerChanges();
    return *header_;
}

void DatabaseState::restoreHeader(const HeaderVariables& header) {
    *header_ = header;
}

}  // namespace sg::model
