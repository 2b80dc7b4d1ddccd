#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "platform/db/database.h"

// What is attached to objects: extended data, extension dictionaries, persistent reactors.

using sg::model::DatabaseState;
using sg::model::ObjectAccess;

// ---- Extended data ------------------------------------------------------------------------------

resbuf* AcDbObject::xData(const wchar_t* application) const {
    assertReadEnabled();
    return extras_ ? extras_->extendedData.toList(application) : nullptr;
}

Acad::ErrorStatus ObjectAccess::setExtendedData(AcDbObject& object, const resbuf* data,
                                                const AcDbDatabase* names) {
    ExtendedData changed;
    if (object.extras_) changed = object.extras_->extendedData;
    const Acad::ErrorStatus status = changed.set(data, names);
    if (status != Acad::eOk) return status;
    object.assertWriteEnabled();
    if (object.extras_ || !changed.empty()) needExtras(object).extendedData = std::move(changed);
    return Acad::eOk;
}

// Outside a database the applications are those of the working one.
Acad::ErrorStatus AcDbObject::setXData(const resbuf* data) {
    const AcDbDatabase* const owner = database();
    return ObjectAccess::setExtendedData(
        *this, data, owner != nullptr ? owner : acdbHostApplicationServices()->workingDatabase());
}

// ---- Extension dictionary -----------------------------------------------------------------------

AcDbObjectId AcDbObject::extensionDictionary() const {
    return extras_ ? extras_->extensionDictionary : AcDbObjectId();
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
    assertWriteEnabled();
    DatabaseState* const state = DatabaseState::of(*this);
    if (state == nullptr) return Acad::eNotInDatabase;
    if (const AcDbObjectId present = extensionDictionary(); present.isValid()) {
        if (!present.isErased()) return Acad::eAlreadyInDb;
        AcDbObject* erased = nullptr;
        const Acad::ErrorStatus status = acdbOpenAcDbObject(erased, present, AcDb::kForWrite, true);
        if (status != Acad::eOk) return status;
        erased->erase(false);
        return erased->close();
    }
    auto* const dictionary = new AcDbDictionary;
    dictionary->setTreatElementsAsHard(true);
    if (const Acad::ErrorStatus status = state->add(*dictionary); status != Acad::eOk) {
        delete dictionary;
        return status;
    }
    ObjectAccess::setOwner(*dictionary, id_);
    ObjectAccess::needExtras(*this).extensionDictionary = dictionary->objectId();
    return dictionary->close();
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
    assertWriteEnabled();
    const AcDbObjectId id = extensionDictionary();
    if (id.isNull()) return Acad::eKeyNotFound;
    AcDbDictionary* dictionary = nullptr;
    const Acad::ErrorStatus status = acdbOpenObject(dictionary, id, AcDb::kForWrite, true);
    if (status == Acad::eOk) {
        if (dictionary->numEntries() != 0) {
            dictionary->close();
            return Acad::eContainerNotEmpty;
        }
        if (!dictionary->isErased()) dictionary->erase();
        dictionary->close();
    } else if (id.isValid()) {
        return status;
    }
    extras_->extensionDictionary.setNull();
    return Acad::eOk;
}

// ---- Persistent reactors ------------------------------------------------------------------------

void AcDbObject::addPersistentReactor(AcDbObjectId object) {
    if (object.isNull() || hasPersistentReactor(object)) return;
    assertWriteEnabled();
    ObjectAccess::needExtras(*this).reactors.append(object);
}

void AcDbObject::removePersistentReactor(AcDbObjectId object) {
    if (!hasPersistentReactor(object)) return;
    assertWriteEnabled();
    extras_->reactors.remove(object);
}

bool AcDbObject::hasPersistentReactor(AcDbObjectId object) const {
    return extras_ && extras_->reactors.contains(object);
}

const AcDbObjectIdArray& AcDbObject::persistentReactors() const {
    static const AcDbObjectIdArray kNone;
    return extras_ ? extras_->reactors : kNone;
}
