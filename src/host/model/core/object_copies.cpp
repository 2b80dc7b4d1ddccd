#include "host/model/core/cloning.h"
#include "host/model/core/database_state.h"
#include "host/model/core/memory_filers.h"
#include "host/model/core/object_access.h"

// Copies of objects.

using sg::model::DatabaseState;
using sg::model::MemoryReader;
using sg::model::MemoryWriter;
using sg::model::ObjectAccess;

AcRxObject* AcDbObject::clone() const {
    const AcRxClass* const descriptor = isA();
    if (descriptor == nullptr) return nullptr;
    std::unique_ptr<AcRxObject> made(descriptor->create());
    AcDbObject* const copy = AcDbObject::cast(made.get());
    if (copy == nullptr || copy->copyFrom(this) != Acad::eOk) return nullptr;
    return made.release();
}

Acad::ErrorStatus AcDbObject::copyFrom(const AcRxObject* other) {
    const AcDbObject* const object = AcDbObject::cast(other);
    if (object == nullptr) return Acad::eNullObjectPointer;
    if (object == this) return Acad::eOk;
    if (!object->isKindOf(isA())) return Acad::eNotThatKindOfClass;
    std::vector<uint8_t> bytes;
    MemoryWriter writer(bytes, AcDb::kCopyFiler, object->database());
    if (const Acad::ErrorStatus status = object->dwgOut(&writer); status != Acad::eOk) {
        return status;
    }
    MemoryReader reader(bytes, AcDb::kCopyFiler, database());
    return dwgIn(&reader);
}

Acad::ErrorStatus AcDbObject::handOverTo(AcDbObject* newObject, bool keepXData,
                                         bool keepExtensionDictionary) {
    if (newObject == nullptr) return Acad::eNullObjectPointer;
    if (!newObject->id_.isNull()) return Acad::eAlreadyInDb;
    DatabaseState* const state = DatabaseState::of(*this);
    if (state == nullptr) return Acad::eNotInDatabase;
    assertWriteEnabled(false);
    state->undo.objectReplaced(*this);
    const AcDbObjectId id = id_;
    const uint16_t open = flags_ & ObjectAccess::kSession;
    newObject->owner_ = owner_;
    if (extras_) {
        sg::model::Extras& extras = ObjectAccess::needExtras(*newObject);
        extras.reactors = extras_->reactors;
        if (keepXData) extras.extendedData = extras_->extendedData;
        if (keepExtensionDictionary) {
            extras.extensionDictionary = extras_->extensionDictionary;
            extras_->extensionDictionary.setNull();
        }
    }
    id_.setNull();
    owner_.setNull();
    flags_ = 0;
    state->putInPlace(id, newObject);
    newObject->flags_ |= open | kModified;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::subDeepClone(AcDbObject* owner, AcDbObject*& copy,
                                           AcDbIdMapping& mapping, bool isPrimary) const {
    return sg::model::cloneObject(*this, owner, copy, mapping, isPrimary, AcDb::kDeepCloneFiler);
}

Acad::ErrorStatus AcDbObject::subWblockClone(AcRxObject* owner, AcDbObject*& copy,
                                             AcDbIdMapping& mapping, bool isPrimary) const {
    return sg::model::cloneObject(*this, AcDbObject::cast(owner), copy, mapping, isPrimary,
                                  AcDb::kWblockCloneFiler);
}
