#include "host/jet/pages/page_allocator.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "host/jet/format/error.h"
#include "host/jet/pages/map_record.h"

namespace sg::jet {
namespace {

constexpr RowId freePages{pages::globalMap, 0};

// Sets the bits of a map page of the map of free pages: those that an inline map had, and those
// beyond the file's end, which are always free.
void fillMapPage(std::span<uint8_t> page, uint64_t firstPage, uint32_t pageCount,
                 const std::vector<uint32_t>& wereFree) {
    const std::span<uint8_t> bits = page.subspan(maps::pageBits);
    const uint64_t count = uint64_t(bits.size()) * 8;
    const auto setBit = [&](uint64_t bit) {
        bits[bit / 8] = static_cast<uint8_t>(bits[bit / 8] | 1u << (bit % 8));
    };
    for (const uint32_t free : wereFree) {
        if (free >= firstPage && free - firstPage < count && free < pageCount)
            setBit(free - firstPage);
    }
    uint64_t bit = pageCount > firstPage ? pageCount - firstPage : 0;
    for (; bit < count && bit % 8 != 0; ++bit)
        setBit(bit);
    if (bit < count)
        std::fill(bits.begin() + static_cast<ptrdiff_t>(bit / 8), bits.end(), uint8_t(0xff));
}

}  // namespace

// Makes sure that the map has a bit for the page, which may be the next one that the file gets.
// Other programs take what the map does not reach for free, so it always reaches to the end.
void PageAllocator::cover(MapRecord& map, uint32_t page) {
    if (map.covers(*pages_, page)) return;
    std::vector<uint32_t> wereFree;
    if (map.isInline()) {
        for (auto free = map.next(*pages_, 0); free && *free < pages_->pageCount();
             free = map.next(*pages_, *free + 1))
            wereFree.push_back(*free);
        map.makeReferenced(*pages_);
    }
    const uint64_t perPage = MapRecord::bitsOfMapPage(*pages_);
    for (uint64_t range = 0; range <= std::max(page, pages_->pageCount()) / perPage; ++range) {
        if (map.mapPage(*pages_, range) != 0) continue;
        const uint32_t added = pages_->grow();
        map.addMapPage(*pages_, range, added);
        fillMapPage(pages_->write(added), range * perPage, pages_->pageCount(), wereFree);
        if (map.covers(*pages_, added)) map.set(*pages_, added, false);
    }
}

uint32_t PageAllocator::allocate() {
    MapRecord map(*pages_, freePages);
    const auto found = map.next(*pages_, searchFrom_);
    if (found && *found < pages_->pageCount()) {
        if (*found <= pages::catalog)
            throwDamaged(L"a page that every database needs is marked as free", *found);
        map.set(*pages_, *found, false);
        const std::span<uint8_t> bytes = pages_->write(*found);
        std::memset(bytes.data(), 0, bytes.size());
        searchFrom_ = *found + 1;
        return *found;
    }
    cover(map, pages_->pageCount());
    const uint32_t added = pages_->grow();
    if (map.contains(*pages_, added)) map.set(*pages_, added, false);
    searchFrom_ = added + 1;
    return added;
}

void PageAllocator::free(uint32_t page) {
    if (page <= pages::catalog || page >= pages_->pageCount())
        throwDamaged(L"a page that can't be free is given back", page);
    MapRecord map(*pages_, freePages);
    cover(map, page);
    if (map.contains(*pages_, page)) throwDamaged(L"a page in use is marked as free", page);
    map.set(*pages_, page, true);
    pages_->write(page)[0] = 0;
    searchFrom_ = std::min(searchFrom_, page);
}

}  // namespace sg::jet
