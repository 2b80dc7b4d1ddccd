#include "host/model/core/cloning.h"

#include <unordered_set>

#include "host/model/core/block_contents.h"
#include "host/model/core/clone_targets.h"
#include "host/model/core/database_state.h"
#include "host/model/core/memory_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "platform/db/database.h"

namespace sg::model {
namespace {

std::vector<ReferenceCollector::Item> referencesOf(const AcDbObject& object, AcDb::FilerType type) {
    ReferenceCollector collector(type, object.database());
    const Unguarded guard(object);
    object.dwgOutFields(&collector);
    return collector.items();
}

// Copies what `original` owns into its copy, and between databases what it cannot do without.
Acad::ErrorStatus cloneReferences(const AcDbObject& original, AcDbObject& copy,
                                  AcDbIdMapping& mapping, AcDb::FilerType type) {
    const bool isBetweenDatabases = type == AcDb::kWblockCloneFiler;
    for (const auto& [kind, id] : referencesOf(original, type)) {
        const AcDbObject* const target = DatabaseTable::objectOf(id);
        if (target == nullptr || target->isErased() || mapping.find(id) != nullptr) continue;
        AcDbObject* cloned = nullptr;
        Acad::ErrorStatus status = Acad::eOk;
        if (isOwnership(kind)) {
            if (target->ownerId() != original.objectId()) continue;
            status = isBetweenDatabases ? target->wblockClone(&copy, cloned, mapping, false)
                                        : target->deepClone(&copy, cloned, mapping, false);
        } else if (isBetweenDatabases && kind == Reference::hardPointer &&
                   target->database() == mapping.origin) {
            AcDbObject* const owner = targetOwner(*target, mapping);
            if (owner != nullptr) status = target->wblockClone(owner, cloned, mapping, true);
            if (cloned != nullptr && cloned->isWriteEnabled()) cloned->close();
        }
        if (status != Acad::eOk) return status;
    }
    return Acad::eOk;
}

// A record or entry whose name is taken where it goes to.
Acad::ErrorStatus useExisting(const AcDbObject& original, AcDbObject& existing,
                              AcDbIdMapping& mapping) {
    const bool replaces = mapping.duplicates == AcDb::kDrcReplace;
    mapping.assign({original.objectId(), existing.objectId(), replaces, false, true});
    if (!replaces) return Acad::eOk;
    DatabaseState& state = *DatabaseState::of(existing);
    state.undo.stateChanges(existing);
    const FiledObject filed = fileObject(original, AcDb::kCopyFiler);
    MemoryReader reader(filed.bytes, AcDb::kCopyFiler, &state.database);
    {
        const Unguarded guard(existing);
        existing.dwgInFields(&reader);
    }
    if (!ObjectAccess::has(existing, ObjectAccess::kOpenForWrite)) {
        state.undo.sessionEnded(existing);
    }
    if (const auto* const block = AcDbBlockTableRecord::cast(&original)) {
        emptyBlock(existing.objectId());
        for (const AcDbObjectId id : block->entityIds()) {
            AcDbObject* copy = nullptr;
            if (id.isErased() || mapping.find(id) != nullptr) continue;
            DatabaseTable::objectOf(id)->wblockClone(&existing, copy, mapping, true);
            if (copy != nullptr) copy->close();
        }
    }
    return cloneReferences(original, existing, mapping, AcDb::kWblockCloneFiler);
}

// Gives a primary copy to its owner's list.
Acad::ErrorStatus joinOwner(AcDbObject& copy, AcDbObject& owner, const AcDbObject& original,
                            DatabaseState& state) {
    if (auto* const dictionary = AcDbDictionary::cast(&owner)) {
        return joinDictionary(copy, *dictionary, original);
    }
    if (auto* const record = AcDbSymbolTableRecord::cast(&copy)) {
        if (auto* const table = AcDbSymbolTable::cast(&owner)) return joinTable(*record, *table);
    }
    if (const Acad::ErrorStatus status = state.add(copy); status != Acad::eOk) return status;
    ObjectAccess::setOwner(copy, owner.objectId());
    const auto* const block = AcDbBlockTableRecord::cast(&owner);
    if (block == nullptr || !copy.isKindOf(AcDbEntity::desc())) return Acad::eOk;
    ObjectAccess::BlockContents& contents = ObjectAccess::contents(*block);
    state.undo.memberJoins(owner.objectId(), copy.objectId(), contents.entities.size());
    contents.append(copy.objectId());
    return Acad::eOk;
}

}  // namespace

std::unique_ptr<AcDbObject> copyOf(const AcDbObject& original, AcDb::FilerType type) {
    const AcRxClass* const descriptor = original.isA();
    if (descriptor == nullptr) return nullptr;
    return makeObject(*descriptor, fileObject(original, type));
}

Acad::ErrorStatus cloneObject(const AcDbObject& original, AcDbObject* owner, AcDbObject*& copy,
                              AcDbIdMapping& mapping, bool isPrimary, AcDb::FilerType type) {
    copy = nullptr;
    if (mapping.find(original.objectId()) != nullptr) return Acad::eOk;
    if (owner == nullptr) return Acad::eNullObjectPointer;
    DatabaseState* const state = DatabaseState::of(*owner);
    if (state == nullptr) return Acad::eNotInDatabase;
    if (type == AcDb::kWblockCloneFiler && isPrimary) {
        if (AcDbObject* const existing = sameNamed(original, *owner, mapping)) {
            return useExisting(original, *existing, mapping);
        }
    }
    std::unique_ptr<AcDbObject> made = copyOf(original, type);
    if (made == nullptr) return Acad::eOk;
    ObjectAccess::setOwner(*made, {});
    Acad::ErrorStatus status = Acad::eOk;
    if (isPrimary) {
        nameForTarget(*made, original, *owner, mapping);
        status = joinOwner(*made, *owner, original, *state);
    } else {
        status = state->add(*made);
    }
    if (status != Acad::eOk) return status;
    AcDbObject& added = *made.release();
    ObjectAccess::setOwner(added, owner->objectId());
    mapping.assign({original.objectId(), added.objectId(), true, isPrimary, true});
    status = cloneReferences(original, added, mapping, type);
    if (!isPrimary) added.close();
    copy = &added;
    return status;
}

void translateCopies(const AcDbIdMapping& mapping) {
    std::unordered_set<AcDbObjectId> copies;
    for (const auto& [key, pair] : mapping.pairs())
        copies.insert(pair.value);
    for (const auto& [key, pair] : mapping.pairs()) {
        AcDbObject* const copy = DatabaseTable::objectOf(pair.value);
        if (!pair.isCloned || copy == nullptr) continue;
        const FiledObject filed = fileObject(*copy, AcDb::kIdXlateFiler);
        TranslatingReader reader(filed.bytes, mapping, copy->objectId());
        const Unguarded guard(*copy);
        const AcDbObjectId owner = copy->ownerId();
        copy->dwgInFields(&reader);
        ObjectAccess::setOwner(*copy, owner);
        // Who listens to an original does not listen to its copy, unless it was copied as well.
        if (std::unique_ptr<Extras>& extras = ObjectAccess::extrasPointer(*copy)) {
            AcDbObjectIdArray kept;
            for (const AcDbObjectId reactor : extras->reactors) {
                if (copies.contains(reactor) || reactor == owner) kept.append(reactor);
            }
            extras->reactors = kept;
        }
    }
}

void emptyBlock(AcDbObjectId block) {
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    if (record == nullptr) return;
    DatabaseState& state = *DatabaseState::of(*record);
    for (const AcDbObjectId id : record->entityIds()) {
        AcDbObject* const entity = DatabaseTable::objectOf(id);
        if (entity == nullptr || entity->isErased()) continue;
        state.undo.eraseChanges(*entity);
        state.setErased(*entity, true);
    }
}

}  // namespace sg::model
