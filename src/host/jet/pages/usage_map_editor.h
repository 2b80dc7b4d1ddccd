#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/pages/page_allocator.h"

// Changes to usage maps. See docs/formats/jet.md, "Usage maps".
namespace sg::jet {

// Puts `page` into the map at `record`, or takes it out; nothing happens when it is there (or not)
// already. An inline map whose window does not reach the page is moved, or where its pages lie too
// far apart made a referenced one, whose map pages come from the allocator. Throw Damaged for a
// record that is not there or of no known kind.
SG_API void addToMap(PageAllocator& allocator, RowId record, uint32_t page);
SG_API void removeFromMap(PageAllocator& allocator, RowId record, uint32_t page);
// The same for several pages at once.
SG_API void addToMap(PageAllocator& allocator, RowId record, std::span<const uint32_t> pages);

// Lays `count` empty inline maps on a page of their own and answers their records, which are
// neighbours. The page holds as many as fit (at least 50); throws InvalidArgument for more.
SG_API std::vector<RowId> createMaps(PageAllocator& allocator, size_t count);
// Adds one empty inline map to the page of `beside`, or to a new one when that has no room.
SG_API RowId createMap(PageAllocator& allocator, RowId beside);
// Takes the record away with its map pages, and the page that holds it when it was the last one
// there. The pages that are in the set stay as they are.
SG_API void dropMap(PageAllocator& allocator, RowId record);

}  // namespace sg::jet
