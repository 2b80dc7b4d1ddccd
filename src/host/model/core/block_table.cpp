#include "platform/db/block_table.h"

#include "base/text.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/block_ends.h"
#include "host/model/core/database_state.h"
#include "host/model/core/list_cursor.h"
#include "host/model/core/memory_filers.h"
#include "host/model/core/object_access.h"
#include "platform/db/database.h"
#include "platform/db/sortents.h"
#include "platform/rx/rxdictionary.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable, 0, 0, L"TABLE", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, 0, 0, L"BLOCK_RECORD", nullptr)

const wchar_t* const ACDB_MODEL_SPACE = L"*Model_Space";
const wchar_t* const ACDB_PAPER_SPACE = L"*Paper_Space";

using sg::model::DatabaseState;
using sg::model::DatabaseTable;
using sg::model::ListCursor;
using sg::model::ObjectAccess;
using sg::model::peek;

namespace {

// Classes that stand above the core are known by their names; null while one is not registered.
const AcRxClass* registeredClass(const wchar_t* name) {
    return static_cast<const AcRxClass*>(acrxClassDictionary()->at(name));
}

}  // namespace

AcDbBlockTable::AcDbBlockTable() = default;
AcDbBlockTable::~AcDbBlockTable() = default;

std::span<const wchar_t* const> AcDbBlockTable::fixedRecords() const {
    static constexpr const wchar_t* kSpaces[] = {L"*Model_Space", L"*Paper_Space"};
    return kSpaces;
}

AcDbBlockTableRecord::AcDbBlockTableRecord() : contents_(std::make_unique<Contents>()) {}
AcDbBlockTableRecord::~AcDbBlockTableRecord() = default;

// ---- Entities -----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
    id.setNull();
    if (entity == nullptr) return Acad::eNullEntityPointer;
    DatabaseState* const state = DatabaseState::of(*this);
    if (state == nullptr) return Acad::eNotInDatabase;
    assertWriteEnabled(false);
    const Acad::ErrorStatus status = state->add(*entity);
    if (status != Acad::eOk) return status;
    id = entity->objectId();
    ObjectAccess::setOwner(*entity, objectId());
    state->undo.memberJoins(objectId(), id, contents_->entities.size());
    contents_->append(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
    AcDbObjectId id;
    return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::assumeOwnershipOf(const AcDbObjectIdArray& entities) {
    assertWriteEnabled(false);
    DatabaseState* const state = DatabaseState::of(*this);
    if (state == nullptr) return Acad::eNotInDatabase;
    for (const AcDbObjectId id : entities) {
        if (id.isNull()) return Acad::eNullObjectId;
        if (id.database() != database()) return Acad::eWrongDatabase;
        AcDbEntity* entity = nullptr;
        const Acad::ErrorStatus status = acdbOpenObject(entity, id, AcDb::kForWrite);
        if (status != Acad::eOk) return status;
        if (const auto* const before = peek<AcDbBlockTableRecord>(entity->ownerId())) {
            Contents& contents = *before->contents_;
            state->undo.memberLeaves(before->objectId(), id, contents.find(id));
            contents.remove(id);
        }
        entity->setOwnerId(objectId());
        state->undo.memberJoins(objectId(), id, contents_->entities.size());
        contents_->append(id);
        entity->close();
    }
    return Acad::eOk;
}

const std::vector<AcDbObjectId>& AcDbBlockTableRecord::entityIds() const {
    return contents_->entities;
}

namespace {

class Iterator final : public AcDbBlockTableRecordIterator {
  public:
    Iterator(AcDbObjectId block, bool atBeginning, bool skipErased) : block_(block) {
        start(atBeginning, skipErased);
    }

    void start(bool atBeginning, bool skipErased) override {
        cursor_.start(list(), atBeginning, skipErased);
    }
    bool done() const override { return cursor_.done(); }
    void step(bool forward, bool skipErased) override {
        cursor_.step(list(), forward, skipErased, [this](AcDbObjectId id) { return placeOf(id); });
    }
    Acad::ErrorStatus getEntityId(AcDbObjectId& id) const override {
        id = cursor_.current();
        return done() ? Acad::eNullObjectId : Acad::eOk;
    }
    Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                bool openErased) const override {
        return acdbOpenObject(entity, cursor_.current(), mode, openErased);
    }
    Acad::ErrorStatus seek(AcDbObjectId id) override {
        const ptrdiff_t place = placeOf(id);
        if (place < 0) return Acad::eKeyNotFound;
        cursor_.moveTo(place, id);
        return Acad::eOk;
    }

  private:
    const ListCursor::Ids* list() const {
        const auto* const block = peek<AcDbBlockTableRecord>(block_);
        return block == nullptr ? nullptr : &block->entityIds();
    }
    ptrdiff_t placeOf(AcDbObjectId id) const {
        const auto* const block = peek<AcDbBlockTableRecord>(block_);
        if (block == nullptr) return -1;
        const size_t place = ObjectAccess::contents(*block).find(id);
        return place == ObjectAccess::BlockContents::kNotFound ? -1 : static_cast<ptrdiff_t>(place);
    }

    AcDbObjectId block_;
    ListCursor cursor_;
};

}  // namespace

std::unique_ptr<AcDbBlockTableRecordIterator> AcDbBlockTableRecord::newIterator(
    bool atBeginning, bool skipErased) const {
    return std::make_unique<Iterator>(objectId(), atBeginning, skipErased);
}

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& origin) {
    assertWriteEnabled();
    origin_ = origin;
    return Acad::eOk;
}

std::wstring AcDbBlockTableRecord::comments() const {
    return contents_->comments;
}

Acad::ErrorStatus AcDbBlockTableRecord::setComments(const wchar_t* comments) {
    assertWriteEnabled();
    contents_->comments = comments != nullptr ? comments : L"";
    return Acad::eOk;
}

// The spaces' names start with the same sign.
bool AcDbBlockTableRecord::isAnonymous() const {
    const auto isSpace = [this](const wchar_t* space) {
        const std::wstring_view prefix(space);
        return sg::equalIgnoringCase(std::wstring_view(name()).substr(0, prefix.size()), prefix);
    };
    return name().starts_with(L'*') && !isSpace(ACDB_MODEL_SPACE) && !isSpace(ACDB_PAPER_SPACE);
}

Acad::ErrorStatus AcDbBlockTableRecord::setLayoutId(AcDbObjectId layout) {
    assertWriteEnabled();
    layout_ = layout;
    return Acad::eOk;
}

bool AcDbBlockTableRecord::hasAttributeDefinitions() const {
    assertReadEnabled();
    const AcRxClass* const wanted = registeredClass(L"AcDbAttributeDefinition");
    for (const AcDbObjectId id : contents_->entities) {
        const AcDbObject* const entity = DatabaseTable::objectOf(id);
        if (entity != nullptr && !entity->isErased() && entity->isKindOf(wanted)) return true;
    }
    return false;
}

bool AcDbBlockTableRecord::isFromExternalReference() const {
    return (standardFlags_ & 4) != 0;
}

void AcDbBlockTableRecord::setExplodable(bool explodable) {
    assertWriteEnabled();
    explodable_ = explodable;
}

void AcDbBlockTableRecord::setBlockInsertUnits(int16_t units) {
    assertWriteEnabled();
    units_ = units;
}

void AcDbBlockTableRecord::setScaleUniformly(bool uniformly) {
    assertWriteEnabled();
    scaleUniformly_ = uniformly;
}

Acad::ErrorStatus AcDbBlockTableRecord::getSortentsTable(AcDbSortentsTable*& table,
                                                         AcDb::OpenMode mode,
                                                         bool createIfNecessary) {
    constexpr const wchar_t* kName = L"ACAD_SORTENTS";
    table = nullptr;
    AcDbObjectId dictionaryId = extensionDictionary();
    if (dictionaryId.isErased()) {
        if (!createIfNecessary) return Acad::eKeyNotFound;
        if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
        if (const auto status = createExtensionDictionary(); status != Acad::eOk) return status;
        dictionaryId = extensionDictionary();
    }
    AcDbDictionary* dictionary = nullptr;
    Acad::ErrorStatus status = acdbOpenObject(dictionary, dictionaryId, AcDb::kForRead);
    if (status != Acad::eOk) return status;
    status = dictionary->getAt(kName, table, mode);
    if (status == Acad::eKeyNotFound && createIfNecessary &&
        (status = dictionary->upgradeOpen()) == Acad::eOk) {
        auto* const made = new AcDbSortentsTable;
        made->setBlockId(objectId());
        AcDbObjectId id;
        status = dictionary->setAt(kName, made, id);
        if (status != Acad::eOk) {
            delete made;
        } else if (mode == AcDb::kForWrite) {
            table = made;
        } else {
            made->close();
            status = acdbOpenObject(table, id, mode);
        }
    }
    dictionary->close();
    return status;
}

// ---- Use by block references --------------------------------------------------------------------

namespace {

bool refersTo(const AcDbObject& object, AcDbObjectId target) {
    sg::model::ReferenceCollector references(AcDb::kIdFiler, object.database());
    const sg::model::Unguarded guard(object);
    object.dwgOutFields(&references);
    for (const auto& reference : references.items()) {
        if (reference.kind == sg::model::Reference::hardPointer && reference.id == target) {
            return true;
        }
    }
    return false;
}

}  // namespace

Acad::ErrorStatus AcDbBlockTableRecord::getBlockReferenceIds(AcDbObjectIdArray& ids) const {
    assertReadEnabled();
    DatabaseState* const state = DatabaseState::of(*this);
    if (state == nullptr) return Acad::eNotInDatabase;
    const AcRxClass* const wanted = registeredClass(L"AcDbBlockReference");
    if (wanted == nullptr) return Acad::eOk;
    state->forEach([&](const AcDbObject& object) {
        const bool isThere = !object.isErased() && !object.ownerId().isErased();
        if (isThere && object.isKindOf(wanted) && refersTo(object, objectId())) {
            ids.append(object.objectId());
        }
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::subErase(bool erasing) {
    if (const auto status = AcDbSymbolTableRecord::subErase(erasing); status != Acad::eOk) {
        return status;
    }
    if (!erasing) return Acad::eOk;
    AcDbObjectIdArray references;
    getBlockReferenceIds(references);
    return references.isEmpty() ? Acad::eOk : Acad::eCannotBeErasedByCaller;
}

// ---- Ends ---------------------------------------------------------------------------------------

void AcDbBlockTableRecord::subEnteredTable() {
    DatabaseState* const state = DatabaseState::of(*this);
    const auto add = [&](AcDbHardOwnershipId& place, AcDbEntity* end) {
        state->add(*end);
        ObjectAccess::setOwner(*end, objectId());
        place = end->objectId();
        end->close();
    };
    if (contents_->begin.isNull()) add(contents_->begin, new AcDbBlockBegin);
    if (contents_->end.isNull()) add(contents_->end, new AcDbBlockEnd);
}

Acad::ErrorStatus AcDbBlockTableRecord::openBlockBegin(AcDbEntity*& begin,
                                                       AcDb::OpenMode mode) const {
    return acdbOpenObject(begin, contents_->begin, mode);
}

Acad::ErrorStatus AcDbBlockTableRecord::openBlockEnd(AcDbEntity*& end, AcDb::OpenMode mode) const {
    return acdbOpenObject(end, contents_->end, mode);
}
