#pragma once

#include <cstdint>
#include <functional>

#include "base/export.h"
#include "platform/db/handle.h"
#include "platform/lisp/resbuf.h"
#include "platform/rx/array.h"
#include "platform/rx/error_status.h"

class AcDbDatabase;
class AcRxClass;

// Names an object of a drawing database. A value, cheap to copy; ids of different databases never
// compare equal. It may outlive its object and its database: then it is not valid, and nothing can
// be opened through it.
class SG_API AcDbObjectId {
  public:
    constexpr AcDbObjectId() = default;
    constexpr explicit AcDbObjectId(uint64_t value) : value_(value) {}

    constexpr bool isNull() const { return value_ == 0; }
    constexpr uint64_t asOldId() const { return value_; }
    constexpr void setNull() { value_ = 0; }

    bool isValid() const;            // names an object of an open database, erased or not
    bool isErased() const;           // also true for one that is not valid
    bool isResident() const;         // the object has been given to the database
    AcDbDatabase* database() const;  // null when it is closed
    AcDbHandle handle() const;
    const AcRxClass* objectClass() const;  // null for an object that is not resident

    static const AcDbObjectId kNull;

    friend constexpr bool operator==(AcDbObjectId, AcDbObjectId) = default;
    friend constexpr auto operator<=>(AcDbObjectId, AcDbObjectId) = default;

  private:
    uint64_t value_ = 0;  // 0 is the null id; at most 48 bits are used
};

inline constexpr AcDbObjectId AcDbObjectId::kNull{};

// References say what they keep: a hard one keeps its target from being purged, an owner's brings
// its target along when it is copied.
class AcDbHardOwnershipId : public AcDbObjectId {
  public:
    using AcDbObjectId::AcDbObjectId;
    constexpr AcDbHardOwnershipId(AcDbObjectId id) : AcDbObjectId(id) {}
};
class AcDbSoftOwnershipId : public AcDbObjectId {
  public:
    using AcDbObjectId::AcDbObjectId;
    constexpr AcDbSoftOwnershipId(AcDbObjectId id) : AcDbObjectId(id) {}
};
class AcDbHardPointerId : public AcDbObjectId {
  public:
    using AcDbObjectId::AcDbObjectId;
    constexpr AcDbHardPointerId(AcDbObjectId id) : AcDbObjectId(id) {}
};
class AcDbSoftPointerId : public AcDbObjectId {
  public:
    using AcDbObjectId::AcDbObjectId;
    constexpr AcDbSoftPointerId(AcDbObjectId id) : AcDbObjectId(id) {}
};

using AcDbObjectIdArray = AcArray<AcDbObjectId>;

template <>
struct std::hash<AcDbObjectId> {
    size_t operator()(AcDbObjectId id) const noexcept {
        return std::hash<uint64_t>()(id.asOldId());
    }
};

// The object that the entity name `name` stands for. eUnknownHandle for a name that stands for
// nothing, eInvalidInput for a selection set's name.
SG_API Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name);

// The entity name of an object. eNullObjectId for the null id, eUnknownHandle for an id that names
// no object.
SG_API Acad::ErrorStatus acdbGetAdsName(ads_name name, AcDbObjectId id);
