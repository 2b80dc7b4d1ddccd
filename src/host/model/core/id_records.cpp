#include "host/model/core/id_records.h"

#include <stdexcept>

namespace sg::model {
namespace {

// How far above the handles so far one may lie to be kept in the array.
constexpr uint64_t kGap = 1 << 16;

}  // namespace

uint32_t IdRecords::add(uint64_t handle) {
    if (count_ == kMaximum) throw std::length_error("a drawing has too many objects");
    const uint32_t index = count_ + 1;
    if (index / kChunk >= chunks_.size()) chunks_.push_back(std::make_unique<IdRecord[]>(kChunk));
    count_ = index;
    enter(index, handle);
    return index;
}

void IdRecords::enter(uint32_t index, uint64_t handle) {
    find(index)->handle = handle;
    if (handle < dense_.size() + kGap) {
        if (handle >= dense_.size()) dense_.resize(handle + 1);
        dense_[handle] = index;
    } else {
        far_[handle] = index;
    }
}

void IdRecords::setHandle(uint32_t index, uint64_t handle) {
    const uint64_t before = find(index)->handle;
    if (before < dense_.size() && dense_[before] == index) dense_[before] = 0;
    far_.erase(before);
    enter(index, handle);
}

uint32_t IdRecords::findHandle(uint64_t handle) const {
    if (handle < dense_.size() && dense_[handle] != 0) return dense_[handle];
    if (far_.empty()) return 0;
    const auto found = far_.find(handle);
    return found == far_.end() ? 0 : found->second;
}

}  // namespace sg::model
