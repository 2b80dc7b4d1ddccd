#pragma once

#include <cstdint>
#include <vector>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/page_store.h"

// One page of an index's B-tree. See docs/formats/jet_index.md, "Index pages".
namespace sg::jet {

// No tree is followed deeper than this: with two children to a node it would have more leaves than
// a file has pages.
inline constexpr size_t maxIndexDepth = 24;

// Entries are addressed by their offset from the page's first entry: the first is at 0, and each
// begins where the one before it ends. Nothing is unpacked; what the page says of its entries is
// checked when it is used, and every function throws Damaged where it contradicts itself.
class SG_API IndexPage {
  public:
    // The page, which must be one of an index.
    static IndexPage read(const PageStore& store, uint32_t page);
    // The same of bytes that are at hand.
    static IndexPage over(const Format& format, PageRef page);
    IndexPage() = default;

    uint32_t page() const { return page_.page(); }
    bool isLeaf() const { return leaf_; }
    uint32_t owner() const;     // the table's definition page
    uint32_t previous() const;  // neighbours on this level; 0 for none
    uint32_t next() const;
    uint32_t tail() const;  // of a node: the child behind those that its entries name; 0 for none
    size_t prefixLength() const { return prefixLength_; }

    // The offset behind the last entry; 0 when there is none.
    size_t end() const { return end_; }
    bool empty() const { return end_ == 0; }
    // The offset of the entry behind the one at `start`, end() behind the last.
    size_t after(size_t start) const;
    // The offset of the entry before `start`, which is an entry's or end() and not 0.
    size_t before(size_t start) const;

    // Of the whole entry at `start`.
    size_t entrySize(size_t start) const;
    // Copies the entry at `start` to `entry`, prefix included: the key, four bytes of row, and in a
    // node four bytes of child page.
    void copyEntry(size_t start, std::vector<uint8_t>& entry) const;
    // Where a node's entry leads.
    uint32_t child(size_t start) const;
    // The child for what is behind all entries of a node: its tail, else the last one's.
    uint32_t lastChild() const;

    // -1, 0 or 1 as the entry's key and row are before `target`, begin with it, or are behind it.
    int compare(size_t start, ByteView target) const;
    // The first entry with compare() >= 0, or > 0 when `beyond`; end() when there is none.
    size_t search(ByteView target, bool beyond) const;

  private:
    size_t trailerSize() const { return leaf_ ? 4 : 8; }
    size_t greatestBit(size_t limit) const;
    size_t lastBit() const;
    size_t entryStart(size_t offset) const;
    size_t farAfter(size_t bit) const;
    ByteView stored(size_t start) const;
    [[noreturn]] void throwTooShort() const;
    int comparePrefix(ByteView target) const;
    int compareRest(size_t start, size_t next, ByteView rest) const;

    PageRef page_;
    const Format* format_ = nullptr;
    bool leaf_ = true;
    ByteView mask_;
    ByteView entries_;
    ByteView prefix_;  // what every entry but the first leaves out
    size_t prefixLength_ = 0;
    size_t end_ = 0;
};

// The parts of an entry that copyEntry() made.
SG_API ByteView entryKey(ByteView entry, bool leaf);
SG_API RowId entryRow(ByteView entry, bool leaf);

}  // namespace sg::jet
