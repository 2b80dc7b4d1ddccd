#include "host/jet/pages/row_store.h"

#include <cstring>
#include <optional>
#include <string>

#include "host/jet/format/error.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/map_record.h"
#include "host/jet/pages/usage_map_editor.h"
#include "host/jet/values/value.h"

namespace sg::jet {
namespace {

constexpr size_t pointerSize = 4;
// A row that overflowed is pointed to directly. A few steps more are allowed for.
constexpr size_t mostSteps = 8;
// How many pages with room, but not enough of it, a search looks at: the newest ones, where room
// is likely, and then the oldest.
constexpr int mostTriesFromEnd = 4;
constexpr int mostTries = 12;

}  // namespace

RowStore::RowStore(PageAllocator& allocator, uint32_t owner, RowId owned, RowId free)
    : allocator_(&allocator),
      owner_(owner),
      owned_(owned),
      free_(free),
      hasFreeMap_(free.page != 0 && free != owned) {}

size_t RowStore::maxRowSize() const {
    const Format& format = allocator_->format();
    return format.pageSize - format.dataPage.rowDirectory - 2;
}

// --- rows ---

RowId RowStore::insert(ByteView row) {
    return place(row, 0);
}

void RowStore::update(RowId id, ByteView row) {
    if (row.size() > maxRowSize()) throw Error(RecordTooLarge);
    const std::vector<RowId> places = follow(id);
    DataPageEditor page = edit(id.page);
    if (!page.canReplace(id.row, row.size())) {
        updateFollowed(places, row);
        return;
    }
    for (size_t i = 1; i < places.size(); ++i)
        erasePlace(places[i]);
    replace(id, row, 0);
}

// Gives a row that does not fit where its id is new bytes elsewhere.
void RowStore::updateFollowed(const std::vector<RowId>& places, ByteView row) {
    const RowId home = places.front();
    const RowId end = places.back();
    if (places.size() > 1 && edit(end.page).canReplace(end.row, row.size())) {
        replace(end, row, rows::deletedFlag);
        return;
    }
    for (size_t i = 1; i < places.size(); ++i)
        erasePlace(places[i]);
    moveAway(home, row);
}

void RowStore::erase(RowId id) {
    for (const RowId at : follow(id))
        erasePlace(at);
}

// The row's place and, when it has overflowed, the places that it leads to. Throws Damaged when
// one of them is not there or some other row's.
std::vector<RowId> RowStore::follow(RowId id) const {
    const PageStore& pages = allocator_->pages();
    std::vector<RowId> places{id};
    while (true) {
        const RowId at = places.back();
        const DataPage page(pages, at.page);
        if (page.owner() != owner_)
            throwDamaged(L"a row is looked for on a page of another owner", at.page);
        if (page.isDeleted(at.row) != (places.size() > 1))
            throwDamaged(L"row " + std::to_wstring(at.row) + L" is not there", at.page);
        if (!page.isLookup(at.row)) return places;
        const ByteView bytes = page.rowBytes(at.row);
        if (bytes.size() < pointerSize || places.size() > mostSteps)
            throwDamaged(L"row " + std::to_wstring(at.row) + L" points to no row", at.page);
        places.push_back(RowId::fromPacked(bytes.get32(0)));
    }
}

DataPageEditor RowStore::edit(uint32_t page) {
    return {allocator_->pages().write(page), allocator_->format(), page};
}

void RowStore::replace(RowId at, ByteView row, uint16_t flags) {
    DataPageEditor page = edit(at.page);
    const size_t old = page.sizeOf(at.row);
    page.replace(at.row, row, flags);
    if (row.size() < old) noteRoom(at.page, old);
}

void RowStore::moveAway(RowId home, ByteView row) {
    const RowId target = place(row, rows::deletedFlag);
    makeRoomForPointer(home);
    pointTo(home, target);
}

void RowStore::pointTo(RowId home, RowId target) {
    Bytes pointer(pointerSize);
    const uint32_t packed = target.packed();
    std::memcpy(pointer.data(), &packed, pointerSize);
    replace(home, ByteView(pointer), rows::lookupFlag);
}

// A row may be shorter than the pointer and its page full: another one goes then, too.
void RowStore::makeRoomForPointer(RowId home) {
    const DataPageEditor page = edit(home.page);
    if (page.canReplace(home.row, pointerSize)) return;
    for (uint16_t row = 0; row < page.room().rowCount; ++row) {
        if (row == home.row || page.flagsOf(row) != 0 || page.sizeOf(row) <= pointerSize) continue;
        const ByteView bytes = page.bytesOf(row);
        const Bytes copy(bytes.begin(), bytes.end());
        moveAway({home.page, row}, ByteView(copy));
        return;
    }
    throw Error(RecordTooLarge, {}, {.page = home.page});
}

void RowStore::erasePlace(RowId at) {
    DataPageEditor page = edit(at.page);
    const size_t old = page.sizeOf(at.row);
    page.erase(at.row);
    if (page.room().hasRows) {
        noteRoom(at.page, old);
    } else {
        giveBack(at.page);
    }
}

// --- pages ---

RowId RowStore::place(ByteView row, uint16_t flags) {
    WriteTransaction& pages = allocator_->pages();
    if (current_ != 0 && !reuses_) {
        const auto number =
            DataPageEditor::append(pages.write(current_), allocator_->format(), owner_, row, flags);
        if (number) return {current_, *number};
    }
    if (row.size() > maxRowSize()) throw Error(RecordTooLarge);
    current_ = pageWithRoom(row.size());
    DataPageEditor page = edit(current_);
    const RowId id{current_, page.insert(row, flags)};
    reuses_ = page.room().freeEntry.has_value();
    return id;
}

uint32_t RowStore::pageWithRoom(size_t size) {
    if (current_ != 0) {
        const PageRef page = allocator_->pages().read(current_);
        const Format& format = allocator_->format();
        if (page->get8(0) == static_cast<uint8_t>(PageKind::Data) &&
            page->get32(format.dataPage.owner) == owner_ &&
            roomOf(page.bytes(), format, current_).fits(size))
            return current_;
    }
    const uint32_t found = searchMap(size);
    return found != 0 ? found : newPage(size);
}

// A page of the map with room for the row; 0 when there is none, or it is too far to seek.
uint32_t RowStore::searchMap(size_t size) {
    // Pages in the map have a row at least.
    if (size + leastRow > maxRowSize()) return 0;
    const PageStore& pages = allocator_->pages();
    const MapRecord map(pages, hasFreeMap_ ? free_ : owned_);
    int tries = 0;
    uint32_t end = 0xffffffff;
    while (tries < mostTriesFromEnd) {
        const auto page = end == 0 ? std::nullopt : map.previous(pages, end - 1);
        if (!page) return 0;
        end = *page;
        const Room room = tryPage(map, end, size);
        if (room == Room::Fits) return end;
        tries += room == Room::Stuck;
    }
    uint32_t firstStuck = 0;
    for (auto page = map.next(pages, 0); page && *page < end; page = map.next(pages, *page + 1)) {
        const Room room = tryPage(map, *page, size);
        if (room == Room::Fits) return *page;
        if (room != Room::Stuck) continue;
        if (firstStuck == 0) firstStuck = *page;
        if (++tries == mostTries) {
            // The next search gets further.
            if (hasFreeMap_) map.set(allocator_->pages(), firstStuck, false);
            break;
        }
    }
    return 0;
}

// Pages that are found to have too little room leave the map. What has room, but not for a row
// that is larger than most, stays.
RowStore::Room RowStore::tryPage(const MapRecord& map, uint32_t page, size_t size) {
    WriteTransaction& pages = allocator_->pages();
    const Format& format = allocator_->format();
    PageRoom room;
    {
        const PageRef ref = pages.read(page, PageKind::Data);
        if (ref->get32(format.dataPage.owner) != owner_) return Room::Passed;
        room = roomOf(ref.bytes(), format, page);
    }
    if (room.fits(size)) return Room::Fits;
    const bool isLargeRow = size > format.pageSize / 2;
    if (!hasFreeMap_ || (isLargeRow && room.fitsAny() && room.bytes >= format.pageSize / 4))
        return Room::Stuck;
    map.set(pages, page, false);
    return Room::Passed;
}

uint32_t RowStore::newPage(size_t size) {
    const uint32_t page = allocator_->allocate();
    DataPageEditor::initialize(allocator_->pages().write(page), allocator_->format(), owner_);
    addToMap(*allocator_, owned_, page);
    if (hasFreeMap_ && size + leastRow <= maxRowSize()) addToMap(*allocator_, free_, page);
    return page;
}

// A row of `lost` bytes has gone from the page, or has become shorter: when there is room for such
// a one now the page belongs into the map of those with room.
void RowStore::noteRoom(uint32_t page, size_t lost) {
    if (page == current_) reuses_ = true;
    if (!hasFreeMap_) return;
    const PageStore& pages = allocator_->pages();
    if (!roomOf(pages.read(page).bytes(), allocator_->format(), page).fits(lost)) return;
    if (MapRecord(pages, owned_).contains(pages, page)) addToMap(*allocator_, free_, page);
}

// A page that the map does not have is some other map's, and stays.
void RowStore::giveBack(uint32_t page) {
    if (!MapRecord(allocator_->pages(), owned_).contains(allocator_->pages(), page)) return;
    removeFromMap(*allocator_, owned_, page);
    if (hasFreeMap_) removeFromMap(*allocator_, free_, page);
    allocator_->free(page);
    if (current_ == page) current_ = 0;
}

}  // namespace sg::jet
