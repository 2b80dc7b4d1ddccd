#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/format/format.h"

// Pages by number, whatever stands behind them: a file, a buffer, a transaction's view.
namespace sg::jet {

// The bytes of one page, kept as long as somebody holds them. Frames belong to one thread.
struct PageFrame {
    uint32_t holders = 0;
    uint32_t page = 0;
    bool recentlyUsed = false;  // the cache's second chance
    std::unique_ptr<uint8_t[]> bytes;
};

// A page that stays where it is, and as it is, while the reference lives.
class SG_API PageRef {
  public:
    PageRef() = default;
    // Bytes that outlive every reference.
    PageRef(uint32_t page, ByteView bytes) : page_(page), bytes_(bytes) {}
    PageRef(PageFrame* frame, size_t size)
        : frame_(frame), page_(frame->page), bytes_(frame->bytes.get(), size) {
        ++frame_->holders;
    }
    PageRef(const PageRef& other) : frame_(other.frame_), page_(other.page_), bytes_(other.bytes_) {
        if (frame_ != nullptr) {
            ++frame_->holders;
        }
    }
    PageRef(PageRef&& other) noexcept
        : frame_(other.frame_), page_(other.page_), bytes_(other.bytes_) {
        other.frame_ = nullptr;
        other.bytes_ = {};
    }
    PageRef& operator=(PageRef other) noexcept {
        std::swap(frame_, other.frame_);
        std::swap(page_, other.page_);
        std::swap(bytes_, other.bytes_);
        return *this;
    }
    ~PageRef() {
        if (frame_ != nullptr && --frame_->holders == 0) {
            delete frame_;
        }
    }

    explicit operator bool() const { return bytes_.data() != nullptr; }
    uint32_t page() const { return page_; }
    const ByteView& bytes() const { return bytes_; }
    const ByteView* operator->() const { return &bytes_; }

  private:
    PageFrame* frame_ = nullptr;
    uint32_t page_ = 0;
    ByteView bytes_;
};

class SG_API PageStore {
  public:
    virtual ~PageStore() = default;

    // The file's layout, which page 0 tells; its pageSize is the size of every page.
    virtual const Format& format() const = 0;
    // Whole pages in the file. A part of a page at its end does not count.
    virtual uint32_t pageCount() const = 0;
    // What errors call the file.
    virtual const std::wstring& name() const = 0;
    // Throws Error: Damaged for a page beyond the end, DiskOrNetwork when reading fails.
    virtual PageRef read(uint32_t page) const = 0;

    size_t pageSize() const { return format().pageSize; }
    // The page, which must be of this kind: Damaged otherwise.
    PageRef read(uint32_t page, PageKind kind) const;
};

// A file's bytes in memory. The buffer must outlive the store and every PageRef.
class SG_API MemoryPageStore final : public PageStore {
  public:
    MemoryPageStore(std::span<const uint8_t> bytes, std::wstring name);

    const Format& format() const override { return *format_; }
    uint32_t pageCount() const override { return pageCount_; }
    const std::wstring& name() const override { return name_; }
    PageRef read(uint32_t page) const override;
    using PageStore::read;

  private:
    ByteView bytes_;
    std::wstring name_;
    const Format* format_ = nullptr;
    uint32_t pageCount_ = 0;
};

}  // namespace sg::jet
