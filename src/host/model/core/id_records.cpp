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
    chunks_[index / kChunk][index % kChunk].handle = handle;
    if (handle < dense_.size() + kGap) {
        if (handle >= dense_.size()) dense_.resize(handle + 1);
        dense_[handle] = index;
    } else {
        far_[handle] = index;
    }
    count_ = index;
    return index;
}

uint32_t IdRecords::findHandle(uint64_t handle) const {
    if (handle < dense_.size() && dense_[handle] != 0) return dense_[handle];
    if (far_.empty()) return 0;
    const auto found = far_.find(handle);
    return found == far_.end() ? 0 : found->second;
}

}  // namespace sg::model
