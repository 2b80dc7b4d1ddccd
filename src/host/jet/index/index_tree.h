#pragma once

#include <cstdint>
#include <vector>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/index/index_page.h"
#include "host/jet/storage/page_store.h"

// The B-tree of an index, as a sequence of entries in the order of their keys and, where keys are
// equal, of their rows. See docs/formats/jet_index.md, "The tree".
namespace sg::jet {

// A place in the sequence: at an entry, or nowhere. Every function that moves answers whether the
// cursor stands at an entry then. Pages are read as the store has them at that moment; after a
// change find() with the key and row that were current puts a cursor back.
//
// A tree that is deeper than any real one, that comes back to a page, or whose entries are out of
// order throws Damaged; no tree makes a single call read more pages than the file has.
class SG_API IndexCursor {
  public:
    IndexCursor(const PageStore& store, uint32_t rootPage) : store_(&store), root_(rootPage) {}

    bool first();
    bool last();
    // From nowhere these answer false and stay there.
    bool next();
    bool previous();

    // To the first entry whose key begins with `key`; nowhere when there is none. A key made of an
    // index's leading columns is the beginning of every key with equal values in those columns.
    bool seek(ByteView key);
    // To the first entry whose key is `key` or behind it.
    bool lowerBound(ByteView key);
    // To the first entry behind all those whose keys begin with `key`.
    bool upperBound(ByteView key);
    // To the last entry before all those whose keys are `key` or behind it; to the last whose key
    // begins with `key` or is before it.
    bool lastBefore(ByteView key);
    bool lastUpTo(ByteView key);
    // To the entry of this key and row; nowhere when there is none.
    bool find(ByteView key, RowId row);

    // About which share of the entries, 0 to 1, come before `key`; with `beyond` those that begin
    // with it too. It reads one page a level and leaves the cursor where it is.
    double shareBefore(ByteView key, bool beyond) const;

    bool valid() const { return valid_; }
    // Of the current entry; there must be one. The view holds until the cursor moves.
    ByteView key() const { return entryKey(ByteView(entry_), true); }
    RowId row() const { return entryRow(ByteView(entry_), true); }
    uint32_t page() const { return leaf_.page(); }

  private:
    bool descendToBound(ByteView target, bool beyond);
    bool descendToEnd();
    bool settle();
    bool moveForward();
    bool moveBackward();
    bool nowhere() {
        valid_ = false;
        return false;
    }

    const PageStore* store_;
    uint32_t root_;
    bool valid_ = false;
    IndexPage leaf_;
    size_t position_ = 0;            // of the entry on leaf_
    std::vector<uint8_t> entry_;     // the current entry, whole
    std::vector<uint8_t> passed_;    // the one before the last step to another page
    std::vector<uint8_t> searched_;  // key and row of find()
};

}  // namespace sg::jet
