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

void UndoLog::stateChanges(AcDbObject& object) {
    state_.tellChange(object.objectId());
    if (ObjectAccess::has(object, ObjectAccess::kRecorded | ObjectAccess::kUndoing)) return;
    const bool isFirst = beginSession(object);
    forgetRedo();
    pushState(steps_, object, Kind::state, isFirst);
}

void UndoLog::objectAppended(AcDbObject& object) {
    state_.tellChange(object.objectId());
    beginSession(object);
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

void UndoLog::headerChanges() {
    if (!isKeeping()) return;
    newStep({{}, payloadOf(new HeaderVariables(state_.header())), 0, Kind::header});
}

void UndoLog::sessionEnded(AcDbObject& object) {
    endSession(object);
    if (sessions_ == 0 && !isKeeping()) dispose(steps_, 0);
}

void UndoLog::cancelSession(AcDbObject& object) {
    for (size_t at = steps_.entries.size(); at-- > 0;) {
        const Entry& entry = steps_.entries[at];
        if (entry.id != object.objectId() || entry.kind != Kind::state) continue;
        if (entry.payload == 0) continue;  // recorded again within the session
        restore(object, bytesOf(steps_, entry));
        return;
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
    scopes_.push_back(steps_.entries.size());
}

void UndoLog::endScope() {
    scopes_.pop_back();
    if (!isKeeping() && sessions_ == 0) dispose(steps_, 0);
}

void UndoLog::abortScope() {
    takeBack(steps_, scopes_.back(), nullptr);
    endScope();
}

void UndoLog::startUndoRecord() {
    if (disabled_) return;
    recordAnew();
    marks_.push_back(steps_.entries.size());
}

bool UndoLog::undo() {
    if (marks_.empty() || !scopes_.empty()) return false;
    Steps inverse;
    takeBack(steps_, marks_.back(), &inverse);
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

// Takes back the steps from `position` on, the last one first. What would take each one back again
// goes to `inverse`; without it what was new is gone for good.
void UndoLog::takeBack(Steps& steps, size_t position, Steps* inverse) {
    while (steps.entries.size() > position) {
        const Entry entry = steps.entries.back();
        steps.entries.pop_back();
        apply(steps, entry, inverse);
        if (entry.kind == Kind::state || entry.kind == Kind::replaced) {
            steps.bytes.resize(entry.offset);
        }
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
            if (entry.payload != 0) endSession(*object);
            break;
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

void UndoLog::dispose(Steps& steps, size_t from) {
    for (size_t at = from; at < steps.entries.size(); ++at) {
        const Entry& entry = steps.entries[at];
        if (entry.kind == Kind::taken) {
            state_.discard(pointerOf<AcDbObject>(entry.payload));
        } else if (entry.kind == Kind::header) {
            delete pointerOf<HeaderVariables>(entry.payload);
        }
    }
    if (from < steps.entries.size() && from == 0) steps.bytes.clear();
    steps.entries.resize(from);
    closed_ = std::min(closed_, steps_.entries.size());
}

void UndoLog::forgetStates(AcDbObjectId id) {
    forgetRedo();
    for (Entry& entry : steps_.entries) {
        if (entry.id == id && (entry.kind == Kind::state || entry.kind == Kind::replaced)) {
            entry.id.setNull();
        }
    }
}

void UndoLog::forgetRedo() {
    for (Steps& steps : redo_)
        dispose(steps, 0);
    redo_.clear();
}

}  // namespace sg::model
