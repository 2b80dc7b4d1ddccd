#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/format/format.h"
#include "host/jet/index/index_page.h"

// Changes to one page of an index's B-tree. See docs/formats/jet_index.md, "Index pages".
namespace sg::jet {

// Whole entries, prefix included, in their order: those of a page that is laid out anew.
class SG_API IndexEntries {
  public:
    explicit IndexEntries(bool leaf) : leaf_(leaf) {}
    // Those of a page. Throws Damaged where the page contradicts itself.
    explicit IndexEntries(const IndexPage& page);

    bool isLeaf() const { return leaf_; }
    size_t size() const { return ends_.size(); }
    bool empty() const { return ends_.empty(); }
    ByteView operator[](size_t i) const {
        const size_t begin = i == 0 ? 0 : ends_[i - 1];
        return {bytes_.data() + begin, ends_[i] - begin};
    }
    // Key and row, which entries are ordered by.
    ByteView sortedPart(size_t i) const;
    uint32_t child(size_t i) const;  // of a node's entry
    // A node's entry with the key and row of entry `i`.
    std::vector<uint8_t> leadingTo(size_t i, uint32_t child) const;

    void append(ByteView entry);
    void append(const IndexEntries& others);
    void dropLast();
    void insert(size_t i, ByteView entry);

    // What entry `i` has in common with the one before it. Throws Damaged when they are not in
    // order; `page` is what the error names.
    size_t shared(size_t i, uint32_t page) const;
    // What the entries from `first` to before `last` have in common.
    size_t commonPrefix(size_t first, size_t last, uint32_t page) const;
    // The bytes that they take on a page with that prefix.
    size_t packedSize(size_t first, size_t last, size_t prefix) const;

  private:
    bool leaf_;
    std::vector<uint8_t> bytes_;
    std::vector<size_t> ends_;
};

// Appends a number as entries have it.
SG_API void appendBig(std::vector<uint8_t>& entry, uint32_t number);

// Changes the bytes of a Jet 4 page. Offsets of entries, and `end` of them all, are those that an
// IndexPage told of the same bytes; no reference to the page is held meanwhile. Entries behind the
// change move, and the bits of the mask with them.
class SG_API IndexPageEditor {
  public:
    IndexPageEditor(const Format& format, std::span<uint8_t> page)
        : layout_(&format.indexPage), page_(page) {}

    // The bytes that entries have on a page.
    static size_t capacity(const Format& format) {
        return format.pageSize - format.indexPage.entries;
    }

    // Makes it an empty page of the table, `level` levels above the leaves, without neighbours.
    void clear(uint32_t table, uint8_t level);
    // Makes it what another page is.
    void copy(ByteView page);
    void setPrevious(uint32_t page) { put32(layout_->previous, page); }
    void setNext(uint32_t page) { put32(layout_->next, page); }
    void setTail(uint32_t page) { put32(layout_->tail, page); }

    // Puts a whole entry before the one at `start`, or behind the last. Answers false, with nothing
    // done, when it has no room or does not begin with the page's prefix.
    bool insert(size_t start, size_t end, ByteView entry);
    // Takes away the entry that stands from `start` to `next`. False, with nothing done, when the
    // prefix is as long as the entry.
    bool erase(size_t start, size_t next, size_t end);
    // Replaces all entries by those from `first` to before `last`, of which each but the first
    // leaves out `prefix` bytes. They must fit.
    void layOut(const IndexEntries& entries, size_t first, size_t last, size_t prefix);

  private:
    size_t capacity() const { return page_.size() - layout_->entries; }
    size_t prefixLength() const;
    void setPrefixLength(size_t length);
    void setEnd(size_t end);
    std::span<uint8_t> mask() {
        return page_.subspan(layout_->entryMask, layout_->entries - layout_->entryMask);
    }
    void put16(size_t offset, uint16_t value);
    void put32(size_t offset, uint32_t value);

    const IndexPageLayout* layout_;
    std::span<uint8_t> page_;
};

}  // namespace sg::jet
