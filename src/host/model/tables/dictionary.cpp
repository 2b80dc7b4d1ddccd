#include "platform/db/dictionary.h"

#include <algorithm>
#include <unordered_map>

#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"

using sg::model::DatabaseState;
using sg::model::FieldReader;
using sg::model::ObjectAccess;

ACRX_DXF_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, 0, 0, L"DICTIONARY", nullptr)

// Entries keep their places while others go, so that iterators hold; places without an object are
// swept out when they are more than the others.
struct AcDbDictionary::Entries {
    struct Entry {
        std::wstring name;
        AcDbObjectId id;     // null where the entry is gone
        uint64_t order = 0;  // rises from entry to entry
    };

    std::vector<Entry> list;
    std::unordered_map<std::wstring, size_t> places;  // by the folded name
    size_t gone = 0;
    uint64_t nextOrder = 0;

    const Entry* find(std::wstring_view name) const {
        const auto found = places.find(sg::upperCased(name));
        return found == places.end() ? nullptr : &list[found->second];
    }

    void set(std::wstring_view name, AcDbObjectId id) {
        const auto [place, added] = places.try_emplace(sg::upperCased(name), list.size());
        if (added) {
            list.push_back({std::wstring(name), id, nextOrder++});
        } else {
            list[place->second].id = id;
        }
    }

    // Puts an entry that was there before back to its place.
    void putBack(std::wstring_view name, AcDbObjectId id, uint64_t order) {
        const auto behind = [](const Entry& entry, uint64_t wanted) {
            return entry.order < wanted;
        };
        const auto at = std::lower_bound(list.begin(), list.end(), order, behind);
        nextOrder = std::max(nextOrder, order + 1);
        const bool isFree = at != list.end() && at->order == order && at->id.isNull();
        if (isFree) {
            *at = {std::wstring(name), id, order};
            places[sg::upperCased(name)] = static_cast<size_t>(at - list.begin());
            --gone;
        } else if (at == list.end()) {
            places[sg::upperCased(name)] = list.size();
            list.push_back({std::wstring(name), id, order});
        } else {
            list.insert(at, {std::wstring(name), id, order});
            sweep();
        }
    }

    void remove(std::wstring_view name) {
        const auto found = places.find(sg::upperCased(name));
        list[found->second].id.setNull();
        places.erase(found);
        if (++gone > list.size() / 2) sweep();
    }

    void rename(const std::wstring& oldName, const std::wstring& newName) {
        const auto found = places.find(sg::upperCased(oldName));
        const size_t place = found->second;
        places.erase(found);
        places[sg::upperCased(newName)] = place;
        list[place].name = newName;
    }

    void clear() {
        list.clear();
        places.clear();
        gone = 0;
    }

    // The first entry at or behind a place that has an object that is not erased.
    size_t nextFrom(size_t place) const {
        while (place < list.size() && (list[place].id.isNull() || list[place].id.isErased())) {
            ++place;
        }
        return place;
    }

  private:
    void sweep() {
        std::erase_if(list, [](const Entry& entry) { return entry.id.isNull(); });
        places.clear();
        for (size_t i = 0; i < list.size(); ++i)
            places[sg::upperCased(list[i].name)] = i;
        gone = 0;
    }
};

namespace {

// Walks a copy of the entries: what happens to the dictionary meanwhile does not show.
class Iterator final : public AcDbDictionaryIterator {
  public:
    void add(std::wstring name, AcDbObjectId id) { entries_.push_back({std::move(name), id}); }

    const wchar_t* name() const override { return done() ? L"" : entries_[at_].first.c_str(); }
    AcDbObjectId objectId() const override {
        return done() ? AcDbObjectId() : entries_[at_].second;
    }
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDb::OpenMode mode) const override {
        return acdbOpenAcDbObject(object, objectId(), mode);
    }
    bool done() const override { return at_ >= entries_.size(); }
    bool next() override {
        if (!done()) ++at_;
        return !done();
    }

  private:
    std::vector<std::pair<std::wstring, AcDbObjectId>> entries_;
    size_t at_ = 0;
};

}  // namespace

AcDbDictionary::AcDbDictionary() : entries_(std::make_unique<Entries>()) {}
AcDbDictionary::~AcDbDictionary() = default;

Acad::ErrorStatus AcDbDictionary::getAt(const wchar_t* name, AcDbObjectId& id) const {
    assertReadEnabled();
    id.setNull();
    const Entries::Entry* entry = entries_->find(name);
    if (entry == nullptr || entry->id.isErased()) return Acad::eKeyNotFound;
    id = entry->id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const wchar_t* name, AcDbObject*& object,
                                        AcDb::OpenMode mode) const {
    object = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus status = getAt(name, id);
    return status != Acad::eOk ? status : acdbOpenAcDbObject(object, id, mode);
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, std::wstring& name) const {
    assertReadEnabled();
    name.clear();
    if (id.isNull()) return Acad::eNullObjectId;
    for (const Entries::Entry& entry : entries_->list) {
        if (entry.id != id) continue;
        name = entry.name;
        return Acad::eOk;
    }
    return Acad::eKeyNotFound;
}

bool AcDbDictionary::has(const wchar_t* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
    std::wstring name;
    return !id.isErased() && nameAt(id, name) == Acad::eOk;
}

uint32_t AcDbDictionary::numEntries() const {
    assertReadEnabled();
    uint32_t count = 0;
    for (size_t at = entries_->nextFrom(0); at < entries_->list.size();
         at = entries_->nextFrom(at + 1)) {
        ++count;
    }
    return count;
}

Acad::ErrorStatus AcDbDictionary::setAt(const wchar_t* name, AcDbObject* object, AcDbObjectId& id) {
    id.setNull();
    if (object == nullptr) return Acad::eNullObjectPointer;
    if (name == nullptr || *name == 0) return Acad::eInvalidKey;
    AcDbDatabase* const home = database();
    if (home == nullptr) return Acad::eNotInDatabase;
    if (object->database() != nullptr && object->database() != home) return Acad::eWrongDatabase;
    assertWriteEnabled(false);
    DatabaseState::of(*this)->undo.entryChanges(*this, name);
    if (object->objectId().isNull()) {
        const Acad::ErrorStatus added = home->addAcDbObject(object);
        if (added != Acad::eOk) return added;
    }
    const Entries::Entry* entry = entries_->find(name);
    if (entry != nullptr && entry->id != object->objectId()) sg::model::eraseObject(entry->id);
    id = object->objectId();
    entries_->set(name, id);
    object->setOwnerId(objectId());
    object->addPersistentReactor(objectId());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const wchar_t* name) {
    AcDbObjectId id;
    if (const Acad::ErrorStatus status = getAt(name, id); status != Acad::eOk) return status;
    assertWriteEnabled(false);
    if (DatabaseState* const state = DatabaseState::of(*this)) {
        state->undo.entryChanges(*this, name);
    }
    entries_->remove(name);
    if (hard_) {
        sg::model::eraseObject(id);
        return Acad::eOk;
    }
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) == Acad::eOk) {
        object->removePersistentReactor(objectId());
        object->close();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
    std::wstring name;
    const Acad::ErrorStatus status = nameAt(id, name);
    return status != Acad::eOk ? status : remove(name.c_str());
}

bool AcDbDictionary::setName(const wchar_t* oldName, const wchar_t* newName) {
    if (newName == nullptr || *newName == 0 || !has(oldName)) return false;
    const bool sameEntry = sg::upperCased(oldName) == sg::upperCased(newName);
    if (!sameEntry && has(newName)) return false;
    assertWriteEnabled();
    if (!sameEntry && entries_->find(newName) != nullptr) entries_->remove(newName);
    entries_->rename(oldName, newName);
    return true;
}

void AcDbDictionary::setTreatElementsAsHard(bool hard) {
    assertWriteEnabled();
    hard_ = hard;
}

void AcDbDictionary::setMergeStyle(AcDb::DuplicateRecordCloning style) {
    assertWriteEnabled();
    mergeStyle_ = style;
}

std::unique_ptr<AcDbDictionaryIterator> AcDbDictionary::newIterator() const {
    assertReadEnabled();
    auto iterator = std::make_unique<Iterator>();
    for (size_t at = entries_->nextFrom(0); at < entries_->list.size();
         at = entries_->nextFrom(at + 1)) {
        iterator->add(entries_->list[at].name, entries_->list[at].id);
    }
    return iterator;
}

AcDbObjectId AcDbDictionary::objectAfter(AcDbObjectId id) const {
    assertReadEnabled();
    const std::vector<Entries::Entry>& list = entries_->list;
    size_t next = 0;
    if (!id.isNull()) {
        const auto at = std::find_if(list.begin(), list.end(),
                                     [&](const Entries::Entry& entry) { return entry.id == id; });
        if (at == list.end()) return {};
        next = static_cast<size_t>(at - list.begin()) + 1;
    }
    next = entries_->nextFrom(next);
    return next < list.size() ? list[next].id : AcDbObjectId();
}

Acad::ErrorStatus AcDbDictionary::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    const auto isFiled = [&](const Entries::Entry& entry) {
        return !inFile || (!entry.id.isNull() && !entry.id.isErased());
    };
    filer->writeUInt32(static_cast<uint32_t>(
        std::count_if(entries_->list.begin(), entries_->list.end(), isFiled)));
    filer->writeInt16(static_cast<int16_t>(mergeStyle_));
    filer->writeUInt8(hard_ ? 1 : 0);
    for (const Entries::Entry& entry : entries_->list) {
        if (!isFiled(entry)) continue;
        filer->writeString(entry.name);
        if (filer->filerType() == AcDb::kUndoFiler) {
            filer->writeInt64(static_cast<int64_t>(entry.order));
        }
        if (hard_) {
            filer->writeHardOwnershipId(entry.id);
        } else {
            filer->writeSoftOwnershipId(entry.id);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    AcDbObject::dwgInFields(filer);
    uint8_t isHard = 0;
    uint32_t count = 0;
    filer->readUInt32(&count);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1015)) sg::model::readInt16As(filer, mergeStyle_);
    filer->readUInt8(&isHard);
    hard_ = isHard != 0;
    entries_->clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        std::wstring name;
        AcDbHardOwnershipId hard;
        AcDbSoftOwnershipId soft;
        int64_t order = -1;
        filer->readString(name);
        if (filer->filerType() == AcDb::kUndoFiler) filer->readInt64(&order);
        if (hard_) {
            filer->readHardOwnershipId(&hard);
        } else {
            filer->readSoftOwnershipId(&soft);
        }
        const AcDbObjectId id = hard_ ? AcDbObjectId(hard) : AcDbObjectId(soft);
        if (id.isNull()) continue;
        if (order < 0) {
            entries_->set(name, id);
        } else {
            entries_->putBack(name, id, static_cast<uint64_t>(order));
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbDictionary");
    if (hard_ || filer->filerType() == AcDb::kBagFiler) filer->writeBool(280, hard_);
    filer->writeInt16(281, static_cast<int16_t>(mergeStyle_));
    for (size_t at = entries_->nextFrom(0); at < entries_->list.size();
         at = entries_->nextFrom(at + 1)) {
        filer->writeString(3, entries_->list[at].name);
        filer->writeObjectId(hard_ ? 360 : 350, entries_->list[at].id);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbDictionary")) return Acad::eBadDxfSequence;
    std::wstring name;
    FieldReader fields(filer);
    while (fields.next()) {
        // Programs put objects into a dictionary one by one.
        const bool isEntry = fields.code() == 3 || fields.code() == 350 || fields.code() == 360;
        if (isEntry && filer->filerType() == AcDb::kBagFiler) continue;
        switch (fields.code()) {
            case 280:
                hard_ = fields.integer() != 0;
                break;
            case 281:
                mergeStyle_ = static_cast<AcDb::DuplicateRecordCloning>(fields.integer());
                break;
            case 3:
                name = fields.text();
                break;
            case 350:
            case 360:
                if (!name.empty() && !fields.objectId().isNull()) {
                    entries_->set(name, fields.objectId());
                }
                name.clear();
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbObject::subErase(erasing);
    if (status != Acad::eOk) return status;
    for (const Entries::Entry& entry : entries_->list)
        sg::model::eraseObject(entry.id, erasing);
    return Acad::eOk;
}

// ---- For undo -----------------------------------------------------------------------------------

ObjectAccess::DictionaryEntry ObjectAccess::entry(const AcDbDictionary& dictionary,
                                                  const std::wstring& name) {
    const AcDbDictionary::Entries::Entry* const found = dictionary.entries_->find(name);
    if (found == nullptr) return {name, {}, 0};
    return {found->name, found->id, found->order};
}

void ObjectAccess::setEntry(AcDbDictionary& dictionary, const DictionaryEntry& entry) {
    AcDbDictionary::Entries& entries = *dictionary.entries_;
    if (entries.find(entry.name) == nullptr) {
        if (!entry.id.isNull()) entries.putBack(entry.name, entry.id, entry.order);
    } else if (entry.id.isNull()) {
        entries.remove(entry.name);
    } else {
        entries.set(entry.name, entry.id);
    }
}
