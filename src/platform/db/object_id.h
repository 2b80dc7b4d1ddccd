#pragma once

#include <cstdint>
#include <functional>

#include "base/export.h"
#include "platform/lisp/resbuf.h"
#include "platform/rx/error_status.h"

// Names an object of a drawing database for as long as the database is open. A value, cheap to
// copy; ids of different databases never compare equal.
class AcDbObjectId {
  public:
    constexpr AcDbObjectId() = default;
    constexpr explicit AcDbObjectId(uint64_t value) : value_(value) {}

    constexpr bool isNull() const { return value_ == 0; }
    constexpr uint64_t asOldId() const { return value_; }
    constexpr void setNull() { value_ = 0; }

    friend constexpr bool operator==(AcDbObjectId, AcDbObjectId) = default;
    friend constexpr auto operator<=>(AcDbObjectId, AcDbObjectId) = default;

  private:
    uint64_t value_ = 0;  // 0 is the null id; at most 48 bits are used
};

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
