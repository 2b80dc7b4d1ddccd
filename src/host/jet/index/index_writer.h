#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/format/row_id.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_page.h"
#include "host/jet/index/index_page_editor.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/values/table_definition.h"

// Changes to an index's B-tree. See docs/formats/jet_index.md, "The tree" and "Changes to a tree".
namespace sg::jet {

// Inserts and erases entries of one tree. The root stays on its page for the tree's life. Pages
// keep the prefix compression that other programs expect of them; those that become full are split
// (behind the last entry when entries come in ascending order, so that pages fill up), those that
// become sparse join a neighbour where both fit, and empty ones are given back, but for the root.
//
// The object belongs to one transaction, and while it lives nobody else changes the tree. What
// throws (Damaged, DiskFull) may leave a part of the change: the caller rolls back.
class SG_API IndexWriter {
  public:
    // The longest key that there may be: a page has room for two entries with it.
    static constexpr size_t maxKeySize = 1800;

    // `index` names root page and map of owned pages; `table` is the definition page that the
    // tree's pages name as their owner.
    IndexWriter(PageAllocator& allocator, const RealIndex& index, uint32_t table);

    // True when an entry has exactly this key (whatever its row, but for `except`).
    bool contains(ByteView key, RowId except = {}) const;
    // Answers whether the key is new: no other entry has it. Throws RecordTooLarge, before anything
    // is changed, for a key that is too long; Damaged when the entry is there already.
    bool insert(ByteView key, RowId row);
    // False when there is no such entry.
    bool erase(ByteView key, RowId row);

    // After WriteTransaction::rollbackTo().
    void rolledBack() { path_.clear(); }

  private:
    struct Step {
        uint32_t page;
        size_t position;  // of the entry that leads on, on a leaf of the one that is looked for
        bool tail;        // position is the end: it is the node's tail that leads on
    };
    // Where in the whole tree an entry is put.
    enum class Place { Between, First, Last };

    WriteTransaction& pages() const { return allocator_->pages(); }
    IndexPageEditor edit(uint32_t page) const;
    IndexPage read(uint32_t page) const;

    IndexPage descend(ByteView target) const;
    IndexPage locate(ByteView target) const;
    bool staysOn(const IndexPage& leaf, ByteView target) const;
    std::optional<bool> isBesideEqual(const IndexPage& leaf, ByteView key) const;
    bool isOnRightEdge() const;
    size_t leafDepth() const { return path_.size() - 1; }
    uint8_t levelAt(size_t depth) const { return static_cast<uint8_t>(leafDepth() - depth); }

    bool put(size_t depth, size_t position, size_t end, ByteView entry, Place place);
    void split(size_t depth, const IndexEntries& entries, size_t added, Place place);
    void splitRoot(const IndexEntries& entries, size_t middle);
    size_t splitPlace(const IndexEntries& entries, size_t added, Place place, uint32_t page) const;
    uint32_t layOutLeft(const IndexEntries& entries, size_t middle, uint8_t level);
    void layOutRest(uint32_t page, const IndexEntries& entries, size_t middle);
    void addChildBefore(size_t depth, const std::vector<uint8_t>& entry, Place place);
    void separateChildren(const IndexEntries& entries, size_t middle, uint32_t tail);
    uint32_t newPage(uint8_t level);
    void link(uint32_t left, uint32_t right);

    // index_shrink.cpp
    size_t sparseSize() const { return capacity_ / 4; }
    void setBound(const std::vector<uint8_t>& last);
    void take(uint32_t page, size_t start, size_t next, size_t end);
    void unlink(uint32_t page);
    void giveBack(uint32_t page);
    std::vector<uint8_t> removePage(size_t depth);
    void tidy(ByteView target, bool removed);
    bool joinNeighbour(size_t depth);
    bool join(size_t depth, uint32_t left, size_t leftPosition, uint32_t right);
    void collapseRoot();
    uint32_t onlyChildOfRoot() const;
    void nameOnlyChild(uint32_t page);
    std::vector<uint8_t> lastBelow(uint32_t page) const;

    PageAllocator* allocator_;
    const Format* format_;
    uint32_t root_;
    RowId owned_;
    uint32_t table_;
    size_t capacity_;  // bytes of entries on a page
    // Of the last descent; empty when pages have changed so that it does not hold.
    mutable std::vector<Step> path_;
    std::vector<uint8_t> entry_;          // key and row that are being put or looked for
    mutable std::vector<uint8_t> found_;  // a copy of an entry
};

// An entry to build a tree from.
struct IndexEntry {
    KeyBytes key;
    RowId row;
};

// Makes an empty tree: its root, and the map of owned pages at `owned`, which exists and is empty.
// Answers the root page.
SG_API uint32_t createTree(PageAllocator& allocator, uint32_t table, RowId owned);
// Fills an empty tree from entries in ascending order of key and row, page after page. `next` sets
// the entry and answers true, or false behind the last. Faster and denser than single inserts.
// Throws RecordTooLarge for a key that is too long, InvalidArgument for entries out of order.
SG_API void buildTree(PageAllocator& allocator, const RealIndex& index, uint32_t table,
                      const std::function<bool(IndexEntry&)>& next);
// Gives every page of the tree back, the root too. The map's record stays, empty.
SG_API void dropTree(PageAllocator& allocator, const RealIndex& index);

}  // namespace sg::jet
