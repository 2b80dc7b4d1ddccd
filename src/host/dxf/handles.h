#pragma once

#include <vector>

#include "host/dxf/group.h"
#include "host/model/core/database_state.h"
#include "host/model/core/database_table.h"

namespace sg::dxf {

// What the handles in a file stand for. An object may be referred to before it is read, and then
// its id is there ahead of it.
class Handles {
  public:
    explicit Handles(model::DatabaseState& state) : state_(state) {}

    // Handles beyond this are no handles of a real drawing and stand for nothing. What is made
    // while a file is read has them until all of the file's own are known.
    static constexpr uint64_t kGreatest = uint64_t{1} << 61;

    // From now on new objects get handles that no file has.
    void begin() { state_.setNextHandle(kGreatest + 1); }
    // New objects get the handles behind those of the file, or from `seed` on where that is more.
    void settle(uint64_t seed);

    // The id of a handle, which `isNew` if nothing referred to it before; the null id for the null
    // handle.
    AcDbObjectId refer(uint64_t handle, bool& isNew) {
        isNew = false;
        if (handle == 0 || handle > kGreatest) return {};
        const AcDbObjectId id = state_.findHandle(handle);
        isNew = id.isNull();
        return isNew ? state_.makeRecord(handle) : id;
    }
    // The id of what a group refers to.
    AcDbObjectId refer(const Group& group) {
        bool isNew = false;
        const AcDbObjectId id = refer(group.handle, isNew);
        if (isNew) awaited_.push_back({id, group});
        return id;
    }
    static uint64_t of(AcDbObjectId id) {
        const model::IdRecord* const record = model::DatabaseTable::recordOf(id);
        return record == nullptr ? 0 : record->handle;
    }

    struct Awaited {
        AcDbObjectId id;
        Group group;  // with the first reference
    };
    // Those that were referred to before they were read, or never were read.
    const std::vector<Awaited>& awaited() const { return awaited_; }

  private:
    model::DatabaseState& state_;
    std::vector<Awaited> awaited_;
};

}  // namespace sg::dxf
