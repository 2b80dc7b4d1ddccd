#pragma once

#include <cstdint>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/page_store.h"

// The pages that hold rows, usage maps and long values. See docs/formats/jet.md, "Data pages".
namespace sg::jet {

// A data page and its row directory. The views that it gives live as long as it does.
class SG_API DataPage {
  public:
    DataPage() = default;
    // Throws Damaged when `page` is not a data page or its directory is longer than the page.
    DataPage(const PageStore& store, uint32_t page);

    explicit operator bool() const { return static_cast<bool>(page_); }
    uint32_t number() const { return page_.page(); }
    // The definition page of the table whose rows are here, or pages::longValueOwner.
    uint32_t owner() const { return page_->get32(layout_->owner); }
    uint16_t freeSpace() const { return page_->get16(layout_->freeSpace); }
    uint16_t rowCount() const { return rowCount_; }
    // False when the store has other bytes for the page by now.
    bool isCurrent(const PageStore& store) const;
    const ByteView& bytes() const { return page_.bytes(); }

    // Throw Damaged for a row that the directory does not have.
    bool isDeleted(uint16_t row) const { return (entry(row) & rows::deletedFlag) != 0; }
    // The row's bytes are elsewhere: what stands here begins with its packed row id.
    bool isLookup(uint16_t row) const { return (entry(row) & rows::lookupFlag) != 0; }

    // The bytes of the row, whatever its flags. Throws Damaged when they do not lie between the
    // directory and the page's end.
    ByteView rowBytes(uint16_t row) const;

  private:
    uint16_t entry(uint16_t row) const;

    PageRef page_;
    const DataPageLayout* layout_ = nullptr;
    uint16_t rowCount_ = 0;
};

// Follows the pointers of a row that overflowed: `page` and `row` are left at where its bytes are,
// which have a deleted mark there so that scans pass over them. Throws Damaged for a pointer to
// nothing and for pointers without an end.
SG_API void followOverflow(const PageStore& store, DataPage& page, uint16_t& row);

}  // namespace sg::jet
