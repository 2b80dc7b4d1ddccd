#pragma once

#include <cstddef>
#include <vector>

#include "host/jet/format/row_id.h"
#include "host/jet/storage/storage.h"

namespace sg::jet {

// The locks on records that one operation takes, until its end.
class RecordLocks {
  public:
    explicit RecordLocks(Storage* storage) : storage_(storage) {}
    ~RecordLocks() {
        for (const RowId row : held_)
            storage_->unlockRecord(row);
    }
    RecordLocks(const RecordLocks&) = delete;
    RecordLocks& operator=(const RecordLocks&) = delete;

    // Throws as Storage::lockRecord(). A row may be taken once.
    void take(RowId row) {
        storage_->lockRecord(row);
        if (held_.size() < most) {
            held_.push_back(row);
        } else {
            storage_->unlockRecord(row);
        }
    }

  private:
    // The system's work for a lock grows with their number. Of what comes after so many, which only
    // a large cascade has, we look whether somebody else holds it; nobody else writes meanwhile.
    static constexpr size_t most = 1024;

    Storage* storage_;
    std::vector<RowId> held_;
};

}  // namespace sg::jet
