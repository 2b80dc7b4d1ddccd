#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "base/export.h"
#include "host/jet/storage/page_store.h"

namespace sg::jet {

// One hold of a frame, or none. Unlike a PageRef it lets its owner write.
class SG_API FrameHandle {
  public:
    FrameHandle() = default;
    explicit FrameHandle(PageFrame* frame) : frame_(frame) {
        if (frame_ != nullptr) ++frame_->holders;
    }
    FrameHandle(const FrameHandle& other) : FrameHandle(other.frame_) {}
    FrameHandle(FrameHandle&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
    FrameHandle& operator=(FrameHandle other) noexcept {
        std::swap(frame_, other.frame_);
        return *this;
    }
    ~FrameHandle() {
        if (frame_ != nullptr && --frame_->holders == 0) delete frame_;
    }

    // A frame for `page` whose content is not set yet.
    static FrameHandle make(uint32_t page, size_t pageSize);

    explicit operator bool() const { return frame_ != nullptr; }
    PageFrame* get() const { return frame_; }
    PageFrame* operator->() const { return frame_; }
    bool isShared() const { return frame_->holders > 1; }

  private:
    PageFrame* frame_ = nullptr;
};

// The frames of one state of the database, at most `cacheBytes` of them (and at least 16 pages).
// What is used again before the hand comes round stays longest. Belongs to one thread.
class SG_API PageCache {
  public:
    PageCache(size_t pageSize, size_t cacheBytes);
    PageCache(const PageCache&) = delete;
    PageCache& operator=(const PageCache&) = delete;

    // The page's frame, or null. It counts as a use.
    PageFrame* find(uint32_t page) {
        const size_t part = page / partSize;
        if (part >= parts_.size() || parts_[part] == nullptr) return nullptr;
        PageFrame* frame = (*parts_[part])[page % partSize].frame;
        if (frame != nullptr) frame->recentlyUsed = true;
        return frame;
    }

    // Takes a hold of the frame in place of what was there for its page, and lets another one go
    // when there are too many.
    void put(FrameHandle frame);
    void drop(uint32_t page);
    void clear();
    size_t size() const { return ring_.size(); }

  private:
    static constexpr size_t partSize = 1024;
    struct Place {
        PageFrame* frame = nullptr;  // held by the ring
        size_t ring = 0;             // where the frame stands in the ring
    };
    using Part = std::vector<Place>;

    Place& place(uint32_t page);

    size_t capacity_;                           // pages
    std::vector<std::unique_ptr<Part>> parts_;  // by page; null where no page was ever cached
    std::vector<FrameHandle> ring_;             // every cached frame once
    size_t hand_ = 0;
};

}  // namespace sg::jet
