#include "host/jet/pages/usage_map_editor.h"

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/pages/data_page_editor.h"
#include "host/jet/pages/map_record.h"
#include "host/jet/values/value.h"

namespace sg::jet {
namespace {

// Inline maps begin at a page whose bit is the first one of a byte.
constexpr uint32_t windowStep = 8;

Bytes emptyRecord(const Format& format) {
    return Bytes(maps::inlineBits + format.inlineMapSize);
}

std::vector<uint32_t> pagesOf(const MapRecord& map, const PageStore& store) {
    std::vector<uint32_t> all;
    for (auto page = map.next(store, 0); page; page = map.next(store, *page + 1)) {
        all.push_back(*page);
        if (*page == 0xffffffff) break;
    }
    return all;
}

void setReferenced(PageAllocator& allocator, const MapRecord& map, uint32_t page) {
    WriteTransaction& pages = allocator.pages();
    if (!map.covers(pages, page)) {
        const auto range = static_cast<size_t>(page / MapRecord::bitsOfMapPage(pages));
        map.addMapPage(pages, range, allocator.allocate());
    }
    map.set(pages, page, true);
}

// Moves an inline map's window, or gives the map pages of its own, so that it has `page` beside
// what it has already.
void widen(PageAllocator& allocator, MapRecord& map, uint32_t page) {
    WriteTransaction& pages = allocator.pages();
    std::vector<uint32_t> all = pagesOf(map, pages);
    all.push_back(page);
    const auto [low, high] = std::minmax_element(all.begin(), all.end());
    if (*high >= pages.pageCount())
        throwDamaged(L"a usage map names a page beyond the file's end", *high);
    const uint32_t start = *low / windowStep * windowStep;
    if (*high - start < map.bitCount()) {
        map.moveTo(pages, start);
        for (const uint32_t member : all)
            map.set(pages, member, true);
        return;
    }
    map.makeReferenced(pages);
    for (const uint32_t member : all)
        setReferenced(allocator, map, member);
}

void add(PageAllocator& allocator, MapRecord& map, uint32_t page) {
    WriteTransaction& pages = allocator.pages();
    if (map.contains(pages, page)) return;
    if (!map.isInline()) {
        setReferenced(allocator, map, page);
    } else if (map.covers(pages, page)) {
        map.set(pages, page, true);
    } else {
        widen(allocator, map, page);
    }
}

}  // namespace

void addToMap(PageAllocator& allocator, RowId record, uint32_t page) {
    MapRecord map(allocator.pages(), record);
    add(allocator, map, page);
}

void addToMap(PageAllocator& allocator, RowId record, std::span<const uint32_t> pages) {
    MapRecord map(allocator.pages(), record);
    for (const uint32_t page : pages)
        add(allocator, map, page);
}

void removeFromMap(PageAllocator& allocator, RowId record, uint32_t page) {
    const MapRecord map(allocator.pages(), record);
    if (map.contains(allocator.pages(), page)) map.set(allocator.pages(), page, false);
}

std::vector<RowId> createMaps(PageAllocator& allocator, size_t count) {
    const Format& format = allocator.format();
    const Bytes record = emptyRecord(format);
    const size_t room = format.pageSize - format.dataPage.rowDirectory;
    if (count > room / (record.size() + 2))
        throw Error(InvalidArgument, {}, {.detail = L"one page does not hold so many usage maps"});
    std::vector<RowId> maps;
    if (count == 0) return maps;
    const uint32_t number = allocator.allocate();
    const std::span<uint8_t> page = allocator.pages().write(number);
    DataPageEditor::initialize(page, format, 0);
    while (maps.size() < count)
        maps.push_back({number, DataPageEditor::append(page, format, 0, ByteView(record)).value()});
    return maps;
}

RowId createMap(PageAllocator& allocator, RowId beside) {
    const Format& format = allocator.format();
    const Bytes record = emptyRecord(format);
    MapRecord(allocator.pages(), beside);
    if (roomOf(allocator.pages().read(beside.page).bytes(), format, beside.page)
            .fits(record.size())) {
        DataPageEditor page(allocator.pages().write(beside.page), format, beside.page);
        return {beside.page, page.insert(ByteView(record))};
    }
    return createMaps(allocator, 1).front();
}

void dropMap(PageAllocator& allocator, RowId record) {
    WriteTransaction& pages = allocator.pages();
    const MapRecord map(pages, record);
    for (size_t i = 0; !map.isInline() && i < map.listSize(); ++i) {
        const uint32_t mapPage = map.mapPage(pages, i);
        if (mapPage == 0) continue;
        pages.read(mapPage, PageKind::UsageMap);
        allocator.free(mapPage);
    }
    DataPageEditor page(pages.write(record.page), allocator.format(), record.page);
    page.erase(record.row);
    if (!page.room().hasRows && record.page != pages::globalMap) allocator.free(record.page);
}

}  // namespace sg::jet
