#include "platform/db/object.h"

#include <fmt/xchar.h>

#include <stdexcept>

#include "base/encoding.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "platform/rx/rxclass.h"

// Place and open state of objects.

ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawable, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcGiDrawable)

using sg::model::DatabaseState;
using sg::model::DatabaseTable;
using sg::model::ObjectAccess;

namespace {

constexpr uint16_t kMostReaders = 256;

[[noreturn]] void throwNotOpen(const AcDbObject& object, const char* how) {
    const AcRxClass* const descriptor = object.isA();
    const std::string name = descriptor == nullptr ? "object" : sg::toUtf8(descriptor->name());
    throw std::logic_error(fmt::format("{} {} is not open for {}", name,
                                       sg::toUtf8(object.objectId().handle().text()), how));
}

Acad::ErrorStatus conflict(const AcDbObject& object) {
    if (ObjectAccess::has(object, ObjectAccess::kOpenForWrite)) return Acad::eWasOpenForWrite;
    if (ObjectAccess::has(object, ObjectAccess::kOpenForNotify)) return Acad::eWasOpenForNotify;
    return Acad::eOk;
}

Acad::ErrorStatus openForRead(AcDbObject& object) {
    if (const Acad::ErrorStatus status = conflict(object); status != Acad::eOk) return status;
    uint16_t& readers = ObjectAccess::readers(object);
    if (readers >= kMostReaders) return Acad::eAtMaxReaders;
    if (const auto status = ObjectAccess::askOpen(object, AcDb::kForRead); status != Acad::eOk) {
        return status;
    }
    ++readers;
    return Acad::eOk;
}

Acad::ErrorStatus openForWrite(AcDbObject& object) {
    if (ObjectAccess::readers(object) != 0) return Acad::eWasOpenForRead;
    if (const Acad::ErrorStatus status = conflict(object); status != Acad::eOk) return status;
    if (const auto status = ObjectAccess::askOpen(object, AcDb::kForWrite); status != Acad::eOk) {
        return status;
    }
    ObjectAccess::flags(object) |= ObjectAccess::kOpenForWrite;
    return Acad::eOk;
}

// Whoever is told of a change looks at the object while it is open for others.
Acad::ErrorStatus openForNotify(AcDbObject& object) {
    if (ObjectAccess::has(object, ObjectAccess::kOpenForNotify)) return Acad::eWasOpenForNotify;
    if (const auto status = ObjectAccess::askOpen(object, AcDb::kForNotify); status != Acad::eOk) {
        return status;
    }
    ObjectAccess::flags(object) |= ObjectAccess::kOpenForNotify;
    return Acad::eOk;
}

void endWriting(AcDbObject& object) {
    if (DatabaseState* const state = DatabaseState::of(object)) state->undo.sessionEnded(object);
    ObjectAccess::clear(object, ObjectAccess::kSession);
}

}  // namespace

AcDbObject::AcDbObject() = default;
AcDbObject::~AcDbObject() = default;

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
    assertWriteEnabled();
    owner_ = owner;
    return Acad::eOk;
}

// ---- Opening ------------------------------------------------------------------------------------

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    object = nullptr;
    if (id.isNull()) return Acad::eNullObjectId;
    AcDbObject* const found = DatabaseTable::objectOf(id);
    if (found == nullptr) return Acad::eUnknownHandle;
    if (found->isErased() && !openErased) return Acad::eWasErased;
    Acad::ErrorStatus status = Acad::eInvalidInput;
    switch (mode) {
        case AcDb::kForRead:
            status = openForRead(*found);
            break;
        case AcDb::kForWrite:
            status = openForWrite(*found);
            break;
        case AcDb::kForNotify:
            status = openForNotify(*found);
            break;
        case AcDb::kNotOpen:
            break;
    }
    if (status == Acad::eOk) object = found;
    return status;
}

bool AcDbObject::isReadEnabled() const {
    return id_.isNull() || readers_ != 0 || (flags_ & (kOpenForWrite | kOpenForNotify)) != 0;
}
bool AcDbObject::isWriteEnabled() const {
    return id_.isNull() || (flags_ & kOpenForWrite) != 0;
}
bool AcDbObject::isNotifyEnabled() const {
    return id_.isNull() || (flags_ & kOpenForNotify) != 0;
}
bool AcDbObject::isModified() const {
    return (flags_ & kModified) != 0;
}
bool AcDbObject::isNewObject() const {
    return (flags_ & kNew) != 0;
}
bool AcDbObject::isEraseStatusToggled() const {
    return (flags_ & kEraseToggled) != 0;
}

void AcDbObject::assertReadEnabled() const {
    if (!isReadEnabled() && !isUndoing()) throwNotOpen(*this, "read");
}

void AcDbObject::assertWriteEnabled(bool autoUndo, bool recordModified) {
    if (id_.isNull() || isUndoing()) return;
    if ((flags_ & kOpenForWrite) == 0) throwNotOpen(*this, "write");
    if (autoUndo && (flags_ & kRecorded) == 0) {
        if (DatabaseState* const state = DatabaseState::of(*this)) state->undo.stateChanges(*this);
    }
    if (recordModified) flags_ |= kModified;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    if (readers_ == 0 || id_.isNull()) return Acad::eInvalidOpenState;
    if (readers_ > 1) return Acad::eWasOpenForRead;
    if ((flags_ & kOpenForNotify) != 0) return Acad::eWasOpenForNotify;
    if (const Acad::ErrorStatus status = subOpen(AcDb::kForWrite); status != Acad::eOk) {
        return status;
    }
    readers_ = 0;
    flags_ |= kOpenForWrite;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
    if (id_.isNull() || (flags_ & kOpenForWrite) == 0) return Acad::eInvalidOpenState;
    const uint16_t held = flags_ & kInTransaction;
    endWriting(*this);
    flags_ |= held;
    readers_ = 1;
    return Acad::eOk;
}

// ---- Closing ------------------------------------------------------------------------------------

// The latest open ends. What a transaction holds open, only the transaction closes.
Acad::ErrorStatus AcDbObject::close() {
    if (id_.isNull()) return Acad::eInvalidOpenState;
    if ((flags_ & kOpenForNotify) != 0) {
        subClose();
        ObjectAccess::clear(*this, kOpenForNotify);
        return Acad::eOk;
    }
    const bool writing = (flags_ & kOpenForWrite) != 0;
    if (!writing && readers_ == 0) return Acad::eInvalidOpenState;
    if ((flags_ & kInTransaction) != 0 && readers_ <= 1) return Acad::eInvalidOpenState;
    subClose();
    if (writing) {
        endWriting(*this);
    } else {
        --readers_;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::cancel() {
    if (id_.isNull() || (flags_ & kOpenForWrite) == 0) return Acad::eInvalidOpenState;
    if ((flags_ & kInTransaction) != 0) return Acad::eInvalidOpenState;
    if (const Acad::ErrorStatus status = subCancel(); status != Acad::eOk) return status;
    DatabaseState* const state = DatabaseState::of(*this);
    const bool isNew = (flags_ & kNew) != 0;
    if (state != nullptr && !isNew) {
        if ((flags_ & kCancelable) != 0) state->undo.cancelSession(*this);
        if ((flags_ & kEraseToggled) != 0) state->setErased(*this, !isErased());
    }
    endWriting(*this);
    if (state != nullptr && isNew) state->forget(*this);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    assertWriteEnabled(false);
    if (id_.isNull()) return Acad::eNotInDatabase;
    if (isErased() == erasing) return erasing ? Acad::eWasErased : Acad::eWasNotErased;
    if (const Acad::ErrorStatus status = subErase(erasing); status != Acad::eOk) return status;
    if (DatabaseState* const state = DatabaseState::of(*this)) {
        state->undo.eraseChanges(*this);
        state->setErased(*this, erasing);
    }
    flags_ ^= kEraseToggled;
    AcDbObject* dictionary = nullptr;
    if (acdbOpenAcDbObject(dictionary, extensionDictionary(), AcDb::kForWrite, true) == Acad::eOk) {
        if (dictionary->isErased() != erasing) dictionary->erase(erasing);
        dictionary->close();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::subErase(bool) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbObject::subOpen(AcDb::OpenMode) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbObject::subClose() {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbObject::subCancel() {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::audit(AcDbAuditInfo*) {
    return Acad::eOk;
}

uint32_t AcDbObject::subSetAttributes(AcGiDrawableTraits*) {
    return 0;
}
bool AcDbObject::subWorldDraw(AcGiWorldDraw*) {
    return true;
}
void AcDbObject::subViewportDraw(AcGiViewportDraw*) {}
uint32_t AcDbObject::subViewportDrawLogicalFlags(AcGiViewportDraw*) {
    return 0;
}
