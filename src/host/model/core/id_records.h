#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

class AcDbObject;

namespace sg::model {

// What an id of a database stands for. A record stays where it is for as long as the database is.
struct IdRecord {
    AcDbObject* object = nullptr;  // null: the database has no object of this id
    uint64_t handle = 0;
};

// The id records of one database, by index and by handle. Indexes start at 1 and are never used
// again.
class IdRecords {
  public:
    static constexpr uint32_t kMaximum = (1u << 28) - 1;

    // A record for a handle that has none yet. Throws std::length_error when all indexes are used.
    uint32_t add(uint64_t handle);

    uint32_t count() const { return count_; }  // the greatest index
    // Null for an index that was never given out.
    IdRecord* find(uint32_t index) {
        return index - 1 < count_ ? &chunks_[index / kChunk][index % kChunk] : nullptr;
    }
    uint32_t findHandle(uint64_t handle) const;  // 0 when there is none
    // Gives a record another handle, which no other one has.
    void setHandle(uint32_t index, uint64_t handle);

  private:
    void enter(uint32_t index, uint64_t handle);

    static constexpr uint32_t kChunk = 4096;

    std::vector<std::unique_ptr<IdRecord[]>> chunks_;
    uint32_t count_ = 0;
    // Handles are mostly given out in a row, so that an array serves them; the few that lie far
    // above the others are kept apart.
    std::vector<uint32_t> dense_;
    std::unordered_map<uint64_t, uint32_t> far_;
};

}  // namespace sg::model
