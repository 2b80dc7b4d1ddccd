#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/export.h"
#include "host/model/core/drawing_readers.h"
#include "host/model/core/id_records.h"
#include "platform/db/object_id.h"

namespace sg::model {

class DatabaseState;

// An id's value is its database's sequence number above the index of its record.
constexpr int kIndexBits = 28;
constexpr uint64_t kIndexMask = (1ull << kIndexBits) - 1;

constexpr uint64_t sequenceOf(AcDbObjectId id) {
    return id.asOldId() >> kIndexBits;
}
constexpr uint32_t indexOf(AcDbObjectId id) {
    return static_cast<uint32_t>(id.asOldId() & kIndexMask);
}
constexpr AcDbObjectId makeId(uint64_t sequence, uint32_t index) {
    return AcDbObjectId(sequence << kIndexBits | index);
}

// The open databases by their sequence numbers. Numbers start at 1 and no two databases of a
// process ever have the same, so that an id never names an object of another database than its own.
class SG_API DatabaseTable {
  public:
    DatabaseTable();
    ~DatabaseTable();
    DatabaseTable(const DatabaseTable&) = delete;
    DatabaseTable& operator=(const DatabaseTable&) = delete;

    // The table of the host that exists; null without a host.
    static DatabaseTable* the() { return the_; }

    uint64_t add(DatabaseState* state);  // answers its number
    void remove(uint64_t sequence);

    DatabaseState* find(uint64_t sequence) const {
        const uint64_t at = sequence - first_;
        return at < states_.size() ? states_[at] : nullptr;
    }
    std::vector<DatabaseState*> all() const;
    DrawingReaders& readers() { return readers_; }

    // How a proxy comes alive from the bits that a file had of its object: a new object of the
    // class, in no database, to which goes over what every object has. Null, and the proxy is as it
    // was, when the class cannot read them; so for every proxy while nobody has said how.
    using MakeFromBits = std::unique_ptr<AcDbObject> (*)(const AcRxClass& descriptor,
                                                         AcDbObject& proxy);
    void setMakeFromBits(MakeFromBits make) { makeFromBits_ = make; }
    MakeFromBits makeFromBits() const { return makeFromBits_; }

    // What an id stands for; null when its database is not open.
    static DatabaseState* databaseOf(AcDbObjectId id) {
        return the_ == nullptr ? nullptr : the_->find(sequenceOf(id));
    }
    static IdRecord* recordOf(AcDbObjectId id);
    static AcDbObject* objectOf(AcDbObjectId id) {
        const IdRecord* const record = recordOf(id);
        return record == nullptr ? nullptr : record->object;
    }

  private:
    static DatabaseTable* the_;

    uint64_t first_;
    std::vector<DatabaseState*> states_;  // null: closed
    DrawingReaders readers_;
    MakeFromBits makeFromBits_ = nullptr;
};

}  // namespace sg::model
