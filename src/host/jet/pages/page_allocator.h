#pragma once

#include <cstdint>

#include "base/export.h"
#include "host/jet/storage/write_transaction.h"

// Which pages of the file nobody uses. See docs/formats/jet.md, "Usage maps".
namespace sg::jet {

class MapRecord;

// Gives out pages and takes them back within one write transaction, which everything that changes
// pages reaches through it. It must not outlive the transaction.
class SG_API PageAllocator {
  public:
    explicit PageAllocator(WriteTransaction& pages) : pages_(&pages) {}

    WriteTransaction& pages() const { return *pages_; }
    const Format& format() const { return pages_->format(); }

    // A page of zeros that nobody uses: the lowest one in the map of free pages, else a new one
    // at the file's end. Throws DiskFull as WriteTransaction::grow() does, Damaged when the
    // map of free pages can't be read.
    uint32_t allocate();
    // Gives a page back. It must be one that allocate() could have given: neither one of the
    // file's first three nor one of the map of free pages. Its kind is taken from it, the rest of
    // it stays. Throws Damaged for a page that is free already or not in the file.
    void free(uint32_t page);
    // Forgets what it knows of the map; to be called after WriteTransaction::rollbackTo().
    void rolledBack() { searchFrom_ = 0; }

  private:
    void cover(MapRecord& map, uint32_t page);

    WriteTransaction* pages_;
    uint32_t searchFrom_ = 0;  // no page of the file below is free
};

}  // namespace sg::jet
