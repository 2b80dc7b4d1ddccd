#include "base/text.h"
#include "host/model/core/clone_targets.h"
#include "host/model/core/cloning.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/database.h"
#include "platform/db/sortents.h"

// Copies within and between databases.

using sg::model::DatabaseState;
using sg::model::DatabaseTable;
using sg::model::peek;

namespace {

Acad::ErrorStatus cloneAll(const AcDbObjectIdArray& objects, AcDbObjectId owner,
                           AcDbIdMapping& mapping, bool isWithin) {
    std::vector<AcDbObject*> copies;
    Acad::ErrorStatus status = Acad::eOk;
    for (const AcDbObjectId id : objects) {
        const AcDbObject* const object = DatabaseTable::objectOf(id);
        if (object == nullptr) {
            status = Acad::eUnknownHandle;
        } else if (object->isErased()) {
            status = Acad::eWasErased;
        } else {
            const AcDbObjectId place = owner.isNull() ? object->ownerId() : owner;
            AcDbObject* const target = DatabaseTable::objectOf(place);
            AcDbObject* copy = nullptr;
            status = isWithin ? object->deepClone(target, copy, mapping)
                              : object->wblockClone(target, copy, mapping);
            if (copy != nullptr) copies.push_back(copy);
        }
        if (status != Acad::eOk) break;
    }
    sg::model::translateCopies(mapping);
    for (AcDbObject* const copy : copies)
        copy->close();
    return status;
}

AcDbObjectIdArray entitiesOf(AcDbObjectId block) {
    AcDbObjectIdArray entities;
    if (const auto* const record = peek<AcDbBlockTableRecord>(block)) {
        for (const AcDbObjectId id : record->entityIds()) {
            if (!id.isErased()) entities.append(id);
        }
    }
    return entities;
}

// The block of this name, emptied, or a new one.
Acad::ErrorStatus blockToFill(AcDbDatabase& database, const wchar_t* name, AcDbObjectId& id) {
    AcDbBlockTable* table = nullptr;
    Acad::ErrorStatus status = database.getBlockTable(table, AcDb::kForWrite);
    if (status != Acad::eOk) return status;
    if (table->getAt(name, id) == Acad::eOk) {
        sg::model::emptyBlock(id);
    } else {
        auto* const block = new AcDbBlockTableRecord;
        status = block->setName(name);
        if (status == Acad::eOk) status = table->add(id, block);
        if (status == Acad::eOk) {
            block->close();
        } else {
            delete block;
            if (status == Acad::eInvalidSymbolTableName) status = Acad::eInvalidBlockName;
        }
    }
    table->close();
    return status;
}

// The copies of a block's entities are drawn in the order of the originals.
void copyDrawOrder(AcDbObjectId from, AcDbObjectId to, const AcDbIdMapping& mapping) {
    AcDbBlockTableRecord* block = nullptr;
    AcDbSortentsTable* table = nullptr;
    AcDbObjectIdArray originals, copies;
    if (acdbOpenObject(block, from) == Acad::eOk) {
        if (block->getSortentsTable(table) == Acad::eOk) {
            table->getFullDrawOrder(originals);
            table->close();
        }
        block->close();
    }
    for (const AcDbObjectId id : originals) {
        const AcDbIdMapping::Pair* const pair = mapping.find(id);
        if (pair != nullptr && !pair->value.isErased()) copies.append(pair->value);
    }
    if (copies.isEmpty() || acdbOpenObject(block, to, AcDb::kForWrite) != Acad::eOk) return;
    if (block->getSortentsTable(table, AcDb::kForWrite, true) == Acad::eOk) {
        table->setRelativeDrawOrder(copies);
        table->close();
    }
    block->close();
}

// What drawing files call by name or number: everything but what stands for objects of the source.
void copyHeader(const AcDbDatabase& from, AcDbDatabase& to) {
    const sg::model::HeaderVariables& source = DatabaseState::of(from).header();
    sg::model::HeaderVariables& target = DatabaseState::of(to).changeHeader();
    for (size_t place = 0; place < sg::model::headerRows().size(); ++place) {
        const sg::model::VariableValue& value = source.at(place);
        if (!std::holds_alternative<AcDbObjectId>(value)) target.set(place, value);
    }
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::deepCloneObjects(const AcDbObjectIdArray& objects,
                                                 AcDbObjectId owner, AcDbIdMapping& mapping) {
    for (const AcDbObjectId id : objects) {
        if (id.database() != this) return Acad::eWrongDatabase;
    }
    if (!owner.isNull() && owner.database() != this) return Acad::eWrongDatabase;
    mapping.destination = mapping.origin = this;
    return cloneAll(objects, owner, mapping, true);
}

Acad::ErrorStatus AcDbDatabase::wblockCloneObjects(const AcDbObjectIdArray& objects,
                                                   AcDbObjectId owner, AcDbIdMapping& mapping,
                                                   AcDb::DuplicateRecordCloning duplicates) {
    if (owner.database() != this) return Acad::eWrongDatabase;
    if (objects.isEmpty()) return Acad::eOk;
    AcDbDatabase* const source = objects.first().database();
    if (source == nullptr || source == this) return Acad::eWrongDatabase;
    for (const AcDbObjectId id : objects) {
        if (id.database() != source) return Acad::eWrongDatabase;
    }
    mapping.destination = this;
    mapping.origin = source;
    mapping.duplicates = duplicates;
    sg::model::pairRoots(mapping);
    return cloneAll(objects, owner, mapping, false);
}

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& blockId, const wchar_t* name,
                                       AcDbDatabase* source, bool preserveSource) {
    blockId.setNull();
    if (source == nullptr) return Acad::eInvalidInput;
    if (source == this) return Acad::eSelfReference;
    if (name == nullptr || !sg::model::isSymbolName(name)) return Acad::eInvalidBlockName;
    Acad::ErrorStatus status = blockToFill(*this, name, blockId);
    if (status != Acad::eOk) return status;
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, blockId, AcDb::kForWrite) == Acad::eOk) {
        block->setOrigin(source->insbase());
        block->close();
    }
    AcDbIdMapping mapping;
    mapping.context = AcDb::kDcInsert;
    mapping.assign({source->modelSpaceId(), blockId});
    status =
        wblockCloneObjects(entitiesOf(source->modelSpaceId()), blockId, mapping, AcDb::kDrcIgnore);
    copyDrawOrder(source->modelSpaceId(), blockId, mapping);
    if (!preserveSource) sg::model::emptyBlock(source->modelSpaceId());
    return status;
}

Acad::ErrorStatus AcDbDatabase::insert(const AcGeMatrix3d& transform, AcDbDatabase* source,
                                       bool preserveSource) {
    if (source == nullptr) return Acad::eInvalidInput;
    if (source == this) return Acad::eSelfReference;
    const AcDbObjectIdArray entities = entitiesOf(source->modelSpaceId());
    AcDbIdMapping mapping;
    mapping.context = AcDb::kDcInsert;
    mapping.assign({source->modelSpaceId(), currentSpaceId()});
    const Acad::ErrorStatus status =
        wblockCloneObjects(entities, currentSpaceId(), mapping, AcDb::kDrcIgnore);
    for (const AcDbObjectId id : entities) {
        const AcDbIdMapping::Pair* const pair = mapping.find(id);
        auto* const copy = pair == nullptr ? nullptr : peek<AcDbEntity>(pair->value);
        if (copy == nullptr) continue;
        const sg::model::Unguarded guard(*copy);  // it may have come to a locked layer
        copy->transformBy(transform);
    }
    copyDrawOrder(source->modelSpaceId(), currentSpaceId(), mapping);
    if (!preserveSource) sg::model::emptyBlock(source->modelSpaceId());
    return status;
}

namespace {

Acad::ErrorStatus writeBlock(AcDbDatabase& source, AcDbDatabase*& output,
                             const AcDbObjectIdArray& entities, AcDbObjectId block,
                             const AcGePoint3d& base) {
    auto made = std::make_unique<AcDbDatabase>(true, true);
    copyHeader(source, *made);
    made->setInsbase(base);
    AcDbIdMapping mapping;
    mapping.context = AcDb::kDcWblock;
    mapping.assign({block, made->modelSpaceId()});
    const Acad::ErrorStatus status =
        made->wblockCloneObjects(entities, made->modelSpaceId(), mapping, AcDb::kDrcReplace);
    if (status != Acad::eOk) return status;
    copyDrawOrder(block, made->modelSpaceId(), mapping);
    output = made.release();
    return status;
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& output, AcDbObjectId block) {
    output = nullptr;
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    if (record == nullptr || block.database() != this) return Acad::eInvalidInput;
    return writeBlock(*this, output, entitiesOf(block), block, record->origin());
}

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& output, const AcDbObjectIdArray& entities,
                                       const AcGePoint3d& base) {
    output = nullptr;
    return writeBlock(*this, output, entities, modelSpaceId(), base);
}
