#include "host/model/core/undo_log.h"

#include <algorithm>

#include "host/model/core/block_contents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/memory_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/header_variables.h"

namespace sg::model {
namespace {

template <class T>
uint64_t payloadOf(const T* pointer) {
    return reinterpret_cast<uint64_t>(pointer);
}
template <class T>
T* pointerOf(uint64_t payload) {
    return reinterpret_cast<T*>(payload);
}

void insertMember(AcDbObjectId container, AcDbObjectId member, size_t index) {
    if (const auto* const block = peek<AcDbBlockTableRecord>(container)) {
        ObjectAccess::contents(*block).insert(index, member);
    } else if (const auto* const table = peek<AcDbSymbolTable>(container)) {
        ObjectAccess::records(*table).insert(index, member);
    }
}

void removeMember(AcDbObjectId container, AcDbObjectId member) {
    if (const auto* const block = peek<AcDbBlockTableRecord>(container)) {
        ObjectAccess::contents(*block).remove(member);
    } else if (const auto* const table = peek<AcDbSymbolTable>(container)) {
        ObjectAccess::records(*table).remove(member);
    }
}

}  // namespace

UndoLog::UndoLog(DatabaseState& state) : state_(state) {}

UndoLog::~UndoLog() {
    clear();
}

void UndoLog::clear() {
    dispose(steps_, 0);
    forgetRedo();
}

// ---- Recording ----------------------------------------------------------------------------------

void UndoLog::newStep(const Entry& entry) {
    forgetRedo();
    steps_.entries.push_back(entry);
}

bool UndoLog::isKept(AcDbObjectId id) const {
    const size_t index = indexOf(id);
    return index < kept_.size() && kept_[index] == span_;
}

void UndoLog::setKept(AcDbObjectId id) {
    const size_t index = indexOf(id);
    if (index >= kept_.size()) kept_.resize(std::max<size_t>(index + 1, 2 * kept_.size()));
    kept_[index] = span_;
}

// True for the first record of an open.
bool UndoLog::beginSession(AcDbObject& object) {
    const bool isFirst = !ObjectAccess::has(object, ObjectAccess::kCancelable);
    ObjectAccess::flags(object) |= ObjectAccess::kRecorded | ObjectAccess::kCancelable;
    if (isFirst) ++sessions_;
    return isFirst;
}

void UndoLog::endSession(AcDbObject& object) {
    if (!ObjectAccess::has(object, ObjectAccess::kCancelable)) return;
    ObjectAccess::clear(object, ObjectAccess::kRecorded | ObjectAccess::kCancelable);
    --sessions_;
}

void UndoLog::pushState(Steps& steps, AcDbObject& object, Kind kind, uint64_t payload) {
    steps.entries.push_back({object.objectId(), payload, steps.bytes.size(), kind});
    MemoryWriter writer(steps.bytes, AcDb::kUndoFiler, &state_.database);
    const Unguarded guard(object);
    object.dwgOutFields(&writer);
}

void UndoLog::pushEntry(Steps& steps, AcDbDictionary& dictionary, const std::wstring& name,
                        uint64_t flags) {
    steps.entries.push_back({dictionary.objectId(), flags, steps.bytes.size(), Kind::entry});
    const ObjectAccess::DictionaryEntry entry = ObjectAccess::entry(dictionary, name);
    MemoryWriter writer(steps.bytes, AcDb::kUndoFiler, &state_.database);
    writer.writeInt64(static_cast<int64_t>(entry.id.asOldId()));
    writer.writeInt64(static_cast<int64_t>(entry.order));
    writer.writeString(entry.name);
}

void UndoLog::stateChanges(AcDbObject& object) {
    state_.tellChange(object.objectId());
    if (ObjectAccess::has(object, ObjectAccess::kRecorded | ObjectAccess::kUndoing)) return;
    uint64_t flags = beginSession(object) ? kFirst : 0;
    if (isKeeping()) {
        if (isKept(object.objectId())) flags |= kForSession;
        setKept(object.objectId());
    }
    forgetRedo();
    pushState(steps_, object, Kind::state, flags);
}

void UndoLog::objectAppended(AcDbObject& object) {
    state_.tellChange(object.objectId());
    beginSession(object);
    if (isKeeping()) setKept(object.objectId());
    newStep({object.objectId(), 0, 0, Kind::appended});
}

void UndoLog::eraseChanges(AcDbObject& object) {
    state_.tellChange(object.objectId());
    if (isKeeping()) newStep({object.objectId(), object.isErased(), 0, Kind::erase});
}

void UndoLog::memberJoins(AcDbObjectId container, AcDbObjectId member, size_t index) {
    state_.tellChange(member);
    if (isKeeping()) newStep({container, member.asOldId(), index, Kind::joined});
}

void UndoLog::memberLeaves(AcDbObjectId container, AcDbObjectId member, size_t index) {
    state_.tellChange(member);
    if (isKeeping()) newStep({container, member.asOldId(), index, Kind::left});
}

void UndoLog::objectReplaced(AcDbObject& object) {
    state_.tellChange(object.objectId());
    if (!isKeeping()) return;
    forgetRedo();
    pushState(steps_, object, Kind::replaced, payloadOf(object.isA()));
}

void UndoLog::entryChanges(AcDbDictionary& dictionary, const std::wstring& name) {
    state_.tellChange(dictionary.objectId());
    constexpr uint16_t kCovered = ObjectAccess::kRecorded | ObjectAccess::kUndoing;
    if (ObjectAccess::has(dictionary, kCovered)) return;
    const bool isFirst = !ObjectAccess::has(dictionary, ObjectAccess::kCancelable);
    ObjectAccess::flags(dictionary) |= ObjectAccess::kCancelable;
    if (isFirst) ++sessions_;
    forgetRedo();
    pushEntry(steps_, dictionary, name, isFirst ? kFirst : 0);
}

void UndoLog::headerChanges() {
    if (!isKeeping() || headerKept_ == span_) return;
    headerKept_ = span_;
    newStep({{}, payloadOf(new HeaderVariables(state_.header())), 0, Kind::header});
}

void UndoLog::outsideChanges(std::unique_ptr<OutsideChange> change) {
    if (isKeeping()) newStep({{}, payloadOf(change.release()), 0, Kind::outside});
}

void UndoLog::sessionEnded(AcDbObject& object) {
    endSession(object);
    if (!steps_.entries.empty()) {
        const Entry last = steps_.entries.back();
        if (last.id == object.objectId() && last.kind == Kind::state &&
            (last.payload & kForSession) != 0) {
            steps_.bytes.resize(last.offset);
            steps_.entries.pop_back();
        }
    }
    if (sessions_ == 0 && !isKeeping()) dispose(steps_, 0);
}

void UndoLog::cancelSession(AcDbObject& object) {
    for (size_t at = steps_.entries.size(); at-- > 0;) {
        Entry& entry = steps_.entries[at];
        if (entry.id != object.objectId()) continue;
        if (entry.kind == Kind::entry) {
            restoreEntry(*AcDbDictionary::cast(&object), bytesOf(steps_, entry), nullptr);
            entry.id.setNull();
            if ((entry.payload & kFirst) != 0) return;
        } else if (entry.kind == Kind::state && (entry.payload & kFirst) != 0) {
            restore(object, bytesOf(steps_, entry));
            return;
        }
    }
}

// ---- Scopes and marks ---------------------------------------------------------------------------

// Objects that are open on both sides of the border are recorded anew on its far side.
void UndoLog::recordAnew() {
    const size_t end = steps_.entries.size();
    for (size_t at = std::min(closed_, end); at < end; ++at) {
        AcDbObject* const object = DatabaseTable::objectOf(steps_.entries[at].id);
        if (object != nullptr) ObjectAccess::clear(*object, ObjectAccess::kRecorded);
    }
    closed_ = end;
}

void UndoLog::beginScope() {
    recordAnew();
    ++span_;
    scopes_.push_back(steps_.entries.size());
}

void UndoLog::endScope() {
    scopes_.pop_back();
    if (!isKeeping() && sessions_ == 0) dispose(steps_, 0);
}

void UndoLog::abortScope() {
    takeBack(steps_, scopes_.back(), nullptr);
    ++span_;
    endScope();
}

void UndoLog::startUndoRecord() {
    if (disabled_) return;
    recordAnew();
    ++span_;
    marks_.push_back(steps_.entries.size());
}

bool UndoLog::dropEmptyRecord() {
    if (marks_.empty() || marks_.back() < steps_.entries.size()) return false;
    marks_.pop_back();
    return true;
}

void UndoLog::keepMarks(size_t count) {
    if (count < marks_.size()) marks_.resize(count);
}

bool UndoLog::forgetBefore(size_t mark) {
    if (mark >= marks_.size() || !scopes_.empty() || sessions_ != 0) return false;
    const size_t first = marks_[mark];
    const auto entries = steps_.entries.begin();
    const auto kept = entries + static_cast<std::ptrdiff_t>(first);
    std::for_each(entries, kept, [this](const Entry& entry) { release(entry); });
    const auto withBytes = std::find_if(kept, steps_.entries.end(), hasBytes);
    const size_t bytes =
        withBytes == steps_.entries.end() ? steps_.bytes.size() : withBytes->offset;
    steps_.entries.erase(entries, kept);
    steps_.bytes.erase(steps_.bytes.begin(),
                       steps_.bytes.begin() + static_cast<std::ptrdiff_t>(bytes));
    for (Entry& entry : steps_.entries) {
        if (hasBytes(entry)) entry.offset -= bytes;
    }
    marks_.erase(marks_.begin(), marks_.begin() + static_cast<std::ptrdiff_t>(mark));
    for (size_t& each : marks_)
        each -= first;
    closed_ -= std::min(closed_, first);
    ++span_;
    return true;
}

size_t UndoLog::byteCount() const {
    return steps_.bytes.size() + steps_.entries.size() * sizeof(Entry);
}

bool UndoLog::undo() {
    if (marks_.empty() || !scopes_.empty()) return false;
    Steps inverse;
    takeBack(steps_, marks_.back(), &inverse);
    ++span_;
    marks_.pop_back();
    redo_.push_back(std::move(inverse));
    return true;
}

bool UndoLog::redo() {
    if (redo_.empty() || !scopes_.empty()) return false;
    Steps again = std::move(redo_.back());
    redo_.pop_back();
    marks_.push_back(steps_.entries.size());
    takeBack(again, 0, &steps_);
    ++span_;
    return true;
}

void UndoLog::disableUndoRecording(bool disable) {
    disabled_ = disable;
    if (!disable) return;
    marks_.clear();
    forgetRedo();
    if (!isKeeping() && sessions_ == 0) dispose(steps_, 0);
}

// ---- Taking back --------------------------------------------------------------------------------

std::span<const uint8_t> UndoLog::bytesOf(const Steps& steps, const Entry& entry) const {
    return std::span(steps.bytes).subspan(entry.offset);
}

void UndoLog::restore(AcDbObject& object, std::span<const uint8_t> bytes) {
    state_.tellChange(object.objectId());
    MemoryReader reader(bytes, AcDb::kUndoFiler, &state_.database);
    const Unguarded guard(object);
    object.dwgInFields(&reader);
}

void UndoLog::restoreEntry(AcDbDictionary& dictionary, std::span<const uint8_t> bytes,
                           Steps* inverse) {
    state_.tellChange(dictionary.objectId());
    ObjectAccess::DictionaryEntry entry;
    int64_t id = 0, order = 0;
    MemoryReader reader(bytes, AcDb::kUndoFiler, &state_.database);
    reader.readInt64(&id);
    reader.readInt64(&order);
    reader.readString(entry.name);
    entry.id = AcDbObjectId(static_cast<uint64_t>(id));
    entry.order = static_cast<uint64_t>(order);
    if (inverse != nullptr) pushEntry(*inverse, dictionary, entry.name, 0);
    ObjectAccess::setEntry(dictionary, entry);
}

// Takes back the steps from `position` on, the last one first. What would take each one back again
// goes to `inverse`; without it what was new is gone for good.
void UndoLog::takeBack(Steps& steps, size_t position, Steps* inverse) {
    while (steps.entries.size() > position) {
        const Entry entry = steps.entries.back();
        steps.entries.pop_back();
        apply(steps, entry, inverse);
        if (hasBytes(entry)) steps.bytes.resize(entry.offset);
    }
    closed_ = std::min(closed_, steps_.entries.size());
}

void UndoLog::apply(Steps& steps, const Entry& entry, Steps* inverse) {
    const bool isMember = entry.kind == Kind::joined || entry.kind == Kind::left;
    if (!entry.id.isNull()) state_.tellChange(isMember ? AcDbObjectId(entry.payload) : entry.id);
    IdRecord* const record = DatabaseTable::recordOf(entry.id);
    AcDbObject* const object = record == nullptr ? nullptr : record->object;
    const auto keep = [&](Kind kind, uint64_t payload) {
        if (inverse != nullptr) {
            inverse->entries.push_back({entry.id, payload, entry.offset, kind});
        }
    };
    switch (entry.kind) {
        case Kind::state:
            if (object == nullptr) break;
            if (inverse != nullptr) pushState(*inverse, *object, Kind::state, 0);
            restore(*object, bytesOf(steps, entry));
            // Its next change is recorded again, by the scope around the one that is taken back.
            ObjectAccess::clear(*object, ObjectAccess::kRecorded);
            if ((entry.payload & kFirst) != 0) endSession(*object);
            break;
        case Kind::entry:
            if (object == nullptr) break;
            restoreEntry(*AcDbDictionary::cast(object), bytesOf(steps, entry), inverse);
            if ((entry.payload & kFirst) != 0) endSession(*object);
            break;
        case Kind::outside: {
            const std::unique_ptr<OutsideChange> change(pointerOf<OutsideChange>(entry.payload));
            std::unique_ptr<OutsideChange> again = change->takeBack();
            if (inverse != nullptr) keep(Kind::outside, payloadOf(again.release()));
            break;
        }
        case Kind::appended:
            if (object == nullptr) break;
            record->object = nullptr;
            endSession(*object);
            if (inverse != nullptr) {
                keep(Kind::taken, payloadOf(object));
            } else {
                state_.discard(object);
            }
            break;
        case Kind::taken:
            record->object = pointerOf<AcDbObject>(entry.payload);
            keep(Kind::appended, 0);
            break;
        case Kind::erase:
            if (object == nullptr) break;
            keep(Kind::erase, object->isErased());
            state_.setErased(*object, entry.payload != 0);
            break;
        case Kind::joined:
            keep(Kind::left, entry.payload);
            removeMember(entry.id, AcDbObjectId(entry.payload));
            break;
        case Kind::left:
            keep(Kind::joined, entry.payload);
            insertMember(entry.id, AcDbObjectId(entry.payload), entry.offset);
            break;
        case Kind::replaced:
            if (object != nullptr) putBackClass(steps, entry, inverse);
            break;
        case Kind::header: {
            const std::unique_ptr<HeaderVariables> before(
                pointerOf<HeaderVariables>(entry.payload));
            if (inverse != nullptr) {
                keep(Kind::header, payloadOf(new HeaderVariables(state_.header())));
            }
            state_.restoreHeader(*before);
            break;
        }
    }
}

void UndoLog::putBackClass(Steps& steps, const Entry& entry, Steps* inverse) {
    IdRecord& record = *DatabaseTable::recordOf(entry.id);
    AcDbObject* const present = record.object;
    const auto* const descriptor = pointerOf<const AcRxClass>(entry.payload);
    std::unique_ptr<AcRxObject> made(descriptor->create());
    auto* const object = dynamic_cast<AcDbObject*>(made.get());
    if (object == nullptr) return;
    if (inverse != nullptr) {
        pushState(*inverse, *present, Kind::replaced, payloadOf(present->isA()));
    }
    restore(*object, bytesOf(steps, entry));
    state_.putInPlace(entry.id, static_cast<AcDbObject*>(made.release()));
    state_.discard(present);
}

// ---- Forgetting ---------------------------------------------------------------------------------

bool UndoLog::hasBytes(const Entry& entry) {
    return entry.kind == Kind::state || entry.kind == Kind::replaced || entry.kind == Kind::entry;
}

void UndoLog::release(const Entry& entry) {
    if (entry.kind == Kind::taken) {
        state_.discard(pointerOf<AcDbObject>(entry.payload));
    } else if (entry.kind == Kind::header) {
        delete pointerOf<HeaderVariables>(entry.payload);
    } else if (entry.kind == Kind::outside) {
        delete pointerOf<OutsideChange>(entry.payload);
    }
}

void UndoLog::dispose(Steps& steps, size_t from) {
    for (size_t at = from; at < steps.entries.size(); ++at)
        release(steps.entries[at]);
    if (from < steps.entries.size() && from == 0) steps.bytes.clear();
    steps.entries.resize(from);
    closed_ = std::min(closed_, steps_.entries.size());
}

void UndoLog::forgetStates(AcDbObjectId id) {
    forgetRedo();
    ++span_;
    for (Entry& entry : steps_.entries) {
        if (entry.id == id && hasBytes(entry)) entry.id.setNull();
    }
}

void UndoLog::forgetRedo() {
    for (Steps& steps : redo_)
        dispose(steps, 0);
    redo_.clear();
}

}  // namespace sg::model
