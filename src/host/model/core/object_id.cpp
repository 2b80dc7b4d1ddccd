#include "platform/db/object_id.h"

#include "host/model/core/database_state.h"
#include "host/model/core/database_table.h"
#include "platform/db/handle.h"
#include "platform/db/object.h"

using sg::model::DatabaseTable;

// ---- AcDbObjectId -------------------------------------------------------------------------------

bool AcDbObjectId::isValid() const {
    return DatabaseTable::objectOf(*this) != nullptr;
}

bool AcDbObjectId::isErased() const {
    const AcDbObject* const object = DatabaseTable::objectOf(*this);
    return object == nullptr || object->isErased();
}

bool AcDbObjectId::isResident() const {
    return isValid();
}

AcDbDatabase* AcDbObjectId::database() const {
    sg::model::DatabaseState* const state = DatabaseTable::databaseOf(*this);
    return state == nullptr ? nullptr : &state->database;
}

AcDbHandle AcDbObjectId::handle() const {
    const sg::model::IdRecord* const record = DatabaseTable::recordOf(*this);
    return record == nullptr ? AcDbHandle() : AcDbHandle(record->handle);
}

const AcRxClass* AcDbObjectId::objectClass() const {
    const AcDbObject* const object = DatabaseTable::objectOf(*this);
    return object == nullptr ? nullptr : object->isA();
}

// ---- AcDbHandle ---------------------------------------------------------------------------------

AcDbHandle::AcDbHandle(const wchar_t* text) {
    if (text == nullptr) return;
    uint64_t value = 0;
    int digits = 0;
    for (; *text != L'\0'; ++text, ++digits) {
        const wchar_t c = *text;
        uint64_t digit = 0;
        if (c >= L'0' && c <= L'9') {
            digit = static_cast<uint64_t>(c - L'0');
        } else if (c >= L'A' && c <= L'F') {
            digit = static_cast<uint64_t>(c - L'A' + 10);
        } else if (c >= L'a' && c <= L'f') {
            digit = static_cast<uint64_t>(c - L'a' + 10);
        } else {
            return;
        }
        if (digits == 16) return;
        value = value << 4 | digit;
    }
    value_ = value;
}

std::wstring AcDbHandle::text() const {
    if (value_ == 0) return L"0";
    std::wstring digits;
    for (uint64_t rest = value_; rest != 0; rest >>= 4)
        digits.insert(digits.begin(), L"0123456789ABCDEF"[rest & 15]);
    return digits;
}

// ---- Entity names -------------------------------------------------------------------------------

// The name of an object is its id's value in two halves. The numbers below the first database's
// ids are left to selection sets.
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
    id.setNull();
    const uint64_t value = static_cast<uint64_t>(static_cast<uint32_t>(name[1])) << 32 |
                           static_cast<uint32_t>(name[0]);
    const AcDbObjectId named(value);
    if (!named.isNull() && sg::model::sequenceOf(named) == 0) return Acad::eInvalidInput;
    if (!named.isValid()) return Acad::eUnknownHandle;
    id = named;
    return Acad::eOk;
}

Acad::ErrorStatus acdbGetAdsName(ads_name name, AcDbObjectId id) {
    name[0] = name[1] = 0;
    if (id.isNull()) return Acad::eNullObjectId;
    if (!id.isValid()) return Acad::eUnknownHandle;
    name[0] = static_cast<int32_t>(static_cast<uint32_t>(id.asOldId()));
    name[1] = static_cast<int32_t>(static_cast<uint32_t>(id.asOldId() >> 32));
    return Acad::eOk;
}
