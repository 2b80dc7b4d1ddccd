#include "host/dxf/handles.h"

#include <algorithm>

namespace sg::dxf {

void Handles::settle(uint64_t seed) {
    model::IdRecords& records = state_.records;
    uint64_t next = std::clamp<uint64_t>(seed, 1, kGreatest);
    for (uint32_t index = 1; index <= records.count(); ++index) {
        const uint64_t handle = records.find(index)->handle;
        if (handle <= kGreatest) next = std::max(next, handle + 1);
    }
    for (uint32_t index = 1; index <= records.count(); ++index) {
        if (records.find(index)->handle > kGreatest) records.setHandle(index, next++);
    }
    state_.setNextHandle(next);
}

}  // namespace sg::dxf
