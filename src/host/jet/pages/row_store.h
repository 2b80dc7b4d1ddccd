#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/format/row_id.h"
#include "host/jet/pages/data_page_editor.h"
#include "host/jet/pages/page_allocator.h"

// Rows on data pages, as bytes. See docs/formats/jet.md, "Data pages".
namespace sg::jet {

class MapRecord;

// The pages of one owner: the rows of a table, or the long values of one of its columns. Space of
// rows that go is used again, and pages without any row are given back. Hints that it keeps belong
// to one transaction, as the object does.
//
// Its functions change only pages and maps; counts, indexes and long values are the callers' work.
// They throw Damaged for pages that contradict themselves and DiskFull, and may leave a part of
// the change then: the caller rolls back.
class SG_API RowStore {
  public:
    // `owner` is the table's definition page or pages::longValueOwner; `owned` and `free` are the
    // records of the maps.
    RowStore(PageAllocator& allocator, uint32_t owner, RowId owned, RowId free);

    // Puts the row on a page that has room for it, at best the one that was used last. The row
    // must be no longer than maxRowSize() says. Answers its id, whose number is below
    // rows::maxRows.
    RowId insert(ByteView row);
    // The row's new bytes, in place where they fit, else on another page to which the row's old
    // place then points; the id stays. Throws Damaged when there is no such row.
    void update(RowId id, ByteView row);
    // The id may be given again to another row later, in another transaction also by others.
    void erase(RowId id);

    // The longest row that fits on an empty page.
    size_t maxRowSize() const;
    // After WriteTransaction::rollbackTo().
    void rolledBack() { current_ = 0; }

  private:
    enum class Room { Fits, Stuck, Passed };

    std::vector<RowId> follow(RowId id) const;
    RowId place(ByteView row, uint16_t flags);
    uint32_t pageWithRoom(size_t size);
    uint32_t searchMap(size_t size);
    Room tryPage(const MapRecord& map, uint32_t page, size_t size);
    uint32_t newPage(size_t size);
    void updateFollowed(const std::vector<RowId>& places, ByteView row);
    void moveAway(RowId home, ByteView row);
    void pointTo(RowId home, RowId target);
    void makeRoomForPointer(RowId home);
    void replace(RowId at, ByteView row, uint16_t flags);
    void erasePlace(RowId at);
    void noteRoom(uint32_t page, size_t lost);
    void giveBack(uint32_t page);
    DataPageEditor edit(uint32_t page);

    PageAllocator* allocator_;
    uint32_t owner_;
    RowId owned_;
    RowId free_;
    bool hasFreeMap_;
    uint32_t current_ = 0;  // where the last row went
    bool reuses_ = false;   // the current page may have entries of deleted rows
};

}  // namespace sg::jet
