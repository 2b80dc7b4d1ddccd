#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/write_transaction.h"

namespace sg::jet {

// Where a usage map's record stands, for changes in place. It keeps its size and its offset for as
// long as its page gets no other rows and loses none. See docs/formats/jet.md, "Usage maps".
class SG_API MapRecord {
  public:
    // Throws Damaged when there is no such record, or its kind is not known.
    MapRecord(const PageStore& store, RowId id);

    RowId id() const { return id_; }
    bool isInline() const { return isInline_; }
    // Inline: the page of the first bit.
    uint32_t firstPage() const { return firstPage_; }
    // Inline: how many bits there are; referenced: how many map pages the list has room for.
    uint64_t bitCount() const { return (size_ - maps::inlineBits) * 8; }
    size_t listSize() const { return (size_ - maps::mapPages) / 4; }
    // How many pages of the file one map page has bits for.
    static uint64_t bitsOfMapPage(const PageStore& store) {
        return (store.pageSize() - maps::pageBits) * 8;
    }

    // True when the map has a bit for the page. Throws Damaged when the list of a referenced map
    // can't have one.
    bool covers(const PageStore& store, uint32_t page) const;
    bool contains(const PageStore& store, uint32_t page) const;
    // The nearest page in the set that is not below, or not above, `from`; it may be beyond the
    // file's end.
    std::optional<uint32_t> next(const PageStore& store, uint32_t from) const;
    std::optional<uint32_t> previous(const PageStore& store, uint32_t from) const;
    // Referenced: the page of the list at `place`, 0 for none. Throws Damaged beyond the list.
    uint32_t mapPage(const PageStore& store, size_t place) const;

    // Sets or clears the bit of a page that the map covers.
    void set(WriteTransaction& pages, uint32_t page, bool on) const;
    // Inline: begins at another page with no bit set.
    void moveTo(WriteTransaction& pages, uint32_t firstPage);
    // Makes it a referenced map without map pages.
    void makeReferenced(WriteTransaction& pages);
    // Referenced: puts a page into the list after making it one without a bit.
    void addMapPage(WriteTransaction& pages, size_t place, uint32_t page) const;

  private:
    ByteView bits(const PageRef& page) const;
    PageRef read(const PageStore& store) const { return store.read(id_.page, PageKind::Data); }

    RowId id_;
    size_t offset_ = 0;
    size_t size_ = 0;
    bool isInline_ = true;
    uint32_t firstPage_ = 0;
};

}  // namespace sg::jet
