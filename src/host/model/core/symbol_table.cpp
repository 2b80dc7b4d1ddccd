#include "platform/db/symbol_table.h"

#include <algorithm>

#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/list_cursor.h"
#include "host/model/core/memory_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)

using sg::model::DatabaseState;
using sg::model::ListCursor;
using sg::model::ObjectAccess;
using sg::model::peek;

// ---- The list of records ------------------------------------------------------------------------

using Records = ObjectAccess::TableRecords;

void Records::insert(size_t index, AcDbObjectId id) {
    const size_t at = std::min(index, ids.size());
    ids.insert(ids.begin() + static_cast<ptrdiff_t>(at), id);
    if (!isIndexed_) return;
    if (const auto* const record = peek<AcDbSymbolTableRecord>(id)) {
        byName_.emplace(sg::upperCased(record->name()), id);
    }
}

void Records::remove(AcDbObjectId id) {
    std::erase(ids, id);
    isIndexed_ = false;
}

void Records::assign(std::vector<AcDbObjectId> records) {
    ids = std::move(records);
    isIndexed_ = false;
}

void Records::buildIndex() const {
    byName_.clear();
    for (const AcDbObjectId id : ids) {
        if (const auto* const record = peek<AcDbSymbolTableRecord>(id)) {
            byName_.emplace(sg::upperCased(record->name()), id);
        }
    }
    isIndexed_ = true;
}

AcDbObjectId Records::find(std::wstring_view name, bool getErased) const {
    if (!isIndexed_) buildIndex();
    AcDbObjectId erased;
    auto [at, end] = byName_.equal_range(sg::upperCased(name));
    for (; at != end; ++at) {
        if (!at->second.isErased()) return at->second;
        if (at->second.isValid() && erased < at->second) erased = at->second;
    }
    return getErased ? erased : AcDbObjectId();
}

namespace sg::model {

bool isSymbolName(std::wstring_view name) {
    constexpr size_t kLongest = 255;
    if (name.starts_with(L'*')) name.remove_prefix(1);
    return !name.empty() && name.size() <= kLongest &&
           name.find_first_of(L"<>/\\\":;?*|,=`") == std::wstring_view::npos;
}

AcDbObjectId findRecord(AcDbObjectId table, std::wstring_view name) {
    const auto* const opened = peek<AcDbSymbolTable>(table);
    return opened == nullptr ? AcDbObjectId() : ObjectAccess::records(*opened).find(name, false);
}

AcDbObjectId findRegisteredApplication(const AcDbDatabase* database, const wchar_t* name) {
    if (database == nullptr || name == nullptr) return {};
    return findRecord(database->regAppTableId(), name);
}

}  // namespace sg::model

namespace {

class Iterator final : public AcDbSymbolTableIterator {
  public:
    Iterator(AcDbObjectId table, bool atBeginning, bool skipErased) : table_(table) {
        start(atBeginning, skipErased);
    }

    void start(bool atBeginning, bool skipErased) override {
        cursor_.start(list(), atBeginning, skipErased);
    }
    bool done() const override { return cursor_.done(); }
    void step(bool forward, bool skipErased) override {
        cursor_.step(list(), forward, skipErased, [this](AcDbObjectId id) { return placeOf(id); });
    }
    AcDbObjectId getRecordId() const override { return cursor_.current(); }
    Acad::ErrorStatus getRecordId(AcDbObjectId& id) const override {
        id = cursor_.current();
        return done() ? Acad::eNullObjectId : Acad::eOk;
    }
    Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                bool openErased) const override {
        return acdbOpenObject(record, cursor_.current(), mode, openErased);
    }
    Acad::ErrorStatus seek(AcDbObjectId id) override {
        const ptrdiff_t place = placeOf(id);
        if (place < 0) return Acad::eKeyNotFound;
        cursor_.moveTo(place, id);
        return Acad::eOk;
    }

  private:
    const ListCursor::Ids* list() const {
        const auto* const table = peek<AcDbSymbolTable>(table_);
        return table == nullptr ? nullptr : &ObjectAccess::records(*table).ids;
    }
    ptrdiff_t placeOf(AcDbObjectId id) const {
        const auto* const records = list();
        if (records == nullptr) return -1;
        const auto found = std::find(records->begin(), records->end(), id);
        return found == records->end() ? -1 : found - records->begin();
    }

    AcDbObjectId table_;
    ListCursor cursor_;
};

}  // namespace

// ---- AcDbSymbolTable ----------------------------------------------------------------------------

AcDbSymbolTable::AcDbSymbolTable() : records_(std::make_unique<Records>()) {}
AcDbSymbolTable::~AcDbSymbolTable() = default;

Acad::ErrorStatus AcDbSymbolTable::getAt(const wchar_t* name, AcDbObjectId& id,
                                         bool getErased) const {
    id.setNull();
    assertReadEnabled();
    if (name == nullptr) return Acad::eInvalidInput;
    id = records_->find(name, getErased);
    return id.isNull() ? Acad::eKeyNotFound : Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const wchar_t* name, AcDbSymbolTableRecord*& record,
                                         AcDb::OpenMode mode, bool openErased) const {
    record = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus status = getAt(name, id, openErased);
    return status != Acad::eOk ? status : acdbOpenObject(record, id, mode, openErased);
}

bool AcDbSymbolTable::has(const wchar_t* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
    assertReadEnabled();
    return !id.isErased() &&
           std::find(records_->ids.begin(), records_->ids.end(), id) != records_->ids.end();
}

int AcDbSymbolTable::numRecords() const {
    assertReadEnabled();
    return static_cast<int>(std::count_if(records_->ids.begin(), records_->ids.end(),
                                          [](AcDbObjectId id) { return !id.isErased(); }));
}

namespace {

// "*U" and its like ask for a number.
bool asksForNumber(std::wstring_view name) {
    return name.size() == 2 && name[0] == L'*';
}

std::wstring nextAnonymousName(const Records& records, const std::wstring& prefix) {
    size_t number = 1;
    while (!records.find(prefix + std::to_wstring(number), false).isNull())
        ++number;
    return prefix + std::to_wstring(number);
}

}  // namespace

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
    id.setNull();
    assertWriteEnabled(false);
    if (record == nullptr) return Acad::eNullObjectPointer;
    if (!record->isKindOf(recordClass())) return Acad::eWrongObjectType;
    DatabaseState* const state = DatabaseState::of(*this);
    if (state == nullptr) return Acad::eNotInDatabase;
    if (record->name().empty() && !ObjectAccess::mayBeNameless(*record))
        return Acad::eInvalidSymbolTableName;
    if (asksForNumber(record->name())) {
        ObjectAccess::setName(*record, nextAnonymousName(*records_, record->name()));
    }
    if (!allowsSameNames() && !record->name().empty() &&
        !records_->find(record->name(), false).isNull()) {
        return Acad::eDuplicateRecordName;
    }
    const Acad::ErrorStatus status = state->add(*record);
    if (status != Acad::eOk) return status;
    id = record->objectId();
    ObjectAccess::setOwner(*record, objectId());
    state->undo.memberJoins(objectId(), id, records_->ids.size());
    records_->append(id);
    ObjectAccess::enteredTable(*record);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
    AcDbObjectId id;
    return add(id, record);
}

std::unique_ptr<AcDbSymbolTableIterator> AcDbSymbolTable::newIterator(bool atBeginning,
                                                                      bool skipErased) const {
    return std::make_unique<Iterator>(objectId(), atBeginning, skipErased);
}

Acad::ErrorStatus AcDbSymbolTable::subErase(bool) {
    return Acad::eCannotBeErasedByCaller;
}

// For undo the list is kept step by step: a state is that of the table alone.
Acad::ErrorStatus AcDbSymbolTable::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    if (filer->filerType() == AcDb::kUndoFiler) return filer->filerStatus();
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
    filer->writeUInt32(static_cast<uint32_t>(records_->ids.size()));
    for (const AcDbObjectId id : records_->ids)
        filer->writeSoftOwnershipId(id);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    if (filer->filerType() == AcDb::kUndoFiler) return filer->filerStatus();
    if (filer->dwgForm() != nullptr) return readFile(*filer);
    uint32_t count = 0;
    filer->readUInt32(&count);
    std::vector<AcDbObjectId> ids;
    while (count-- > 0 && filer->filerStatus() == Acad::eOk) {
        AcDbSoftOwnershipId id;
        filer->readSoftOwnershipId(&id);
        if (!id.isNull()) ids.push_back(id);
    }
    records_->assign(std::move(ids));
    return filer->filerStatus();
}

// Files have the fixed records behind the others, and count them not.
Acad::ErrorStatus AcDbSymbolTable::writeFile(AcDbDwgFiler& filer) const {
    std::vector<AcDbObjectId> fixed;
    for (const wchar_t* const name : fixedRecords())
        fixed.push_back(records_->find(name, false));
    std::vector<AcDbObjectId> others;
    for (const AcDbObjectId id : records_->ids) {
        const bool isFixed = std::find(fixed.begin(), fixed.end(), id) != fixed.end();
        if (!isFixed && !id.isErased()) others.push_back(id);
    }
    filer.writeUInt32(static_cast<uint32_t>(others.size()));
    for (const AcDbObjectId id : others)
        filer.writeSoftOwnershipId(id);
    for (const AcDbObjectId id : fixed)
        filer.writeHardOwnershipId(id);
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::readFile(AcDbDwgFiler& filer) {
    uint32_t count = 0;
    filer.readUInt32(&count);
    std::vector<AcDbObjectId> ids;
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        AcDbSoftOwnershipId id;
        filer.readSoftOwnershipId(&id);
        if (!id.isNull()) ids.push_back(id);
    }
    std::vector<AcDbObjectId> fixed;
    for (size_t i = 0; i < fixedRecords().size(); ++i) {
        AcDbHardOwnershipId id;
        filer.readHardOwnershipId(&id);
        if (!id.isNull()) fixed.push_back(id);
    }
    ids.insert(ids.begin(), fixed.begin(), fixed.end());
    records_->assign(std::move(ids));
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbSymbolTable");
    return filer->writeInt16(70, static_cast<int16_t>(numRecords()));
}

Acad::ErrorStatus AcDbSymbolTable::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbSymbolTable")) return status;
    resbuf group{};
    while (filer->readItem(&group) == Acad::eOk) {
        if (group.restype == 100) return filer->pushBackItem();
    }
    return filer->filerStatus();
}
