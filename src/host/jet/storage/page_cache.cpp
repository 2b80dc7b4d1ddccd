#include "host/jet/storage/page_cache.h"

#include <algorithm>
#include <utility>

namespace sg::jet {

FrameHandle FrameHandle::make(uint32_t page, size_t pageSize) {
    auto frame = std::make_unique<PageFrame>();
    frame->bytes = std::make_unique_for_overwrite<uint8_t[]>(pageSize);
    frame->page = page;
    return FrameHandle(frame.release());
}

PageCache::PageCache(size_t pageSize, size_t cacheBytes)
    : capacity_(std::max<size_t>(cacheBytes / pageSize, 16)) {}

PageCache::Place& PageCache::place(uint32_t page) {
    const size_t part = page / partSize;
    if (part >= parts_.size()) parts_.resize(part + 1);
    if (parts_[part] == nullptr) parts_[part] = std::make_unique<Part>(partSize);
    return (*parts_[part])[page % partSize];
}

void PageCache::put(FrameHandle frame) {
    Place& place = this->place(frame->page);
    frame->recentlyUsed =
        false;  // a page that is read once gives way before one that is used again
    if (place.frame != nullptr) {
        place.frame = frame.get();
        ring_[place.ring] = std::move(frame);
        return;
    }
    place.frame = frame.get();
    if (ring_.size() < capacity_) {
        place.ring = ring_.size();
        ring_.push_back(std::move(frame));
        return;
    }
    // Every chance is taken away on the way, so that the walk ends after one round.
    hand_ %= ring_.size();
    while (ring_[hand_]->recentlyUsed) {
        ring_[hand_]->recentlyUsed = false;
        hand_ = (hand_ + 1) % ring_.size();
    }
    this->place(ring_[hand_]->page).frame = nullptr;
    ring_[hand_] = std::move(frame);
    place.ring = hand_;
    hand_ = (hand_ + 1) % ring_.size();
}

void PageCache::drop(uint32_t page) {
    const size_t part = page / partSize;
    if (part >= parts_.size() || parts_[part] == nullptr) return;
    Place& place = (*parts_[part])[page % partSize];
    if (place.frame == nullptr) return;
    place.frame = nullptr;
    ring_[place.ring] = std::move(ring_.back());
    ring_.pop_back();
    if (place.ring < ring_.size()) this->place(ring_[place.ring]->page).ring = place.ring;
}

void PageCache::clear() {
    for (const FrameHandle& frame : ring_) {
        place(frame->page).frame = nullptr;
    }
    ring_.clear();
    hand_ = 0;
}

}  // namespace sg::jet
