#include "host/model/core/transactions.h"

#include <algorithm>

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"

namespace sg::model {

// ---- Transaction --------------------------------------------------------------------------------

Acad::ErrorStatus Transaction::getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                         bool openErased) {
    object = nullptr;
    AcDbObject* const known = DatabaseTable::objectOf(id);
    if (known != nullptr && ObjectAccess::has(*known, ObjectAccess::kInTransaction)) {
        const Acad::ErrorStatus status = openAgain(*known, mode, openErased);
        if (status == Acad::eOk) object = known;
        return status;
    }
    const Acad::ErrorStatus status = acdbOpenAcDbObject(object, id, mode, openErased);
    if (status != Acad::eOk) return status;
    ObjectAccess::flags(*object) |= ObjectAccess::kInTransaction;
    held_.push_back(id);
    return Acad::eOk;
}

// An object that a transaction holds is open to all of them.
Acad::ErrorStatus Transaction::openAgain(AcDbObject& object, AcDb::OpenMode mode, bool openErased) {
    if (object.isErased() && !openErased) return Acad::eWasErased;
    if (mode != AcDb::kForWrite || object.isWriteEnabled()) return Acad::eOk;
    return object.upgradeOpen();
}

Acad::ErrorStatus Transaction::addNewlyCreatedDBRObject(AcDbObject* object, bool add) {
    if (object == nullptr) return Acad::eNullObjectPointer;
    if (object->objectId().isNull()) return Acad::eNotInDatabase;
    if (!object->isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!object->isNewObject()) return Acad::eNotNewlyCreated;
    uint16_t& flags = ObjectAccess::flags(*object);
    if (!add) {
        std::erase(held_, object->objectId());
        flags &= static_cast<uint16_t>(~ObjectAccess::kInTransaction);
    } else if ((flags & ObjectAccess::kInTransaction) == 0) {
        flags |= ObjectAccess::kInTransaction;
        held_.push_back(object->objectId());
    }
    return Acad::eOk;
}

void Transaction::release() {
    for (const AcDbObjectId id : held_) {
        AcDbObject* const object = DatabaseTable::objectOf(id);
        if (object == nullptr) continue;
        ObjectAccess::flags(*object) &= static_cast<uint16_t>(~ObjectAccess::kInTransaction);
        object->close();
    }
    held_.clear();
}

// ---- TransactionManager -------------------------------------------------------------------------

TransactionManager::TransactionManager(DatabaseState& state) : state_(state) {}

TransactionManager::~TransactionManager() = default;

AcTransaction* TransactionManager::startTransaction() {
    state_.undo.beginScope();
    active_.push_back(std::make_unique<Transaction>());
    return active_.back().get();
}

Acad::ErrorStatus TransactionManager::endTransaction() {
    if (active_.empty()) return Acad::eNoActiveTransactions;
    active_.back()->release();
    active_.pop_back();
    state_.undo.endScope();
    return Acad::eOk;
}

Acad::ErrorStatus TransactionManager::abortTransaction() {
    if (active_.empty()) return Acad::eNoActiveTransactions;
    active_.back()->release();
    active_.pop_back();
    state_.undo.abortScope();
    return Acad::eOk;
}

AcTransaction* TransactionManager::topTransaction() const {
    return active_.empty() ? nullptr : active_.back().get();
}

Acad::ErrorStatus TransactionManager::getObject(AcDbObject*& object, AcDbObjectId id,
                                                AcDb::OpenMode mode, bool openErased) {
    object = nullptr;
    if (active_.empty()) return Acad::eNoActiveTransactions;
    return active_.back()->getObject(object, id, mode, openErased);
}

Acad::ErrorStatus TransactionManager::addNewlyCreatedDBRObject(AcDbObject* object, bool add) {
    if (active_.empty()) return Acad::eNoActiveTransactions;
    return active_.back()->addNewlyCreatedDBRObject(object, add);
}

}  // namespace sg::model
