#include "host/jet/pages/map_record.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "host/jet/format/error.h"
#include "host/jet/pages/data_page.h"

namespace sg::jet {
namespace {

constexpr uint64_t lastPage = 0xffffffff;

void put32(std::span<uint8_t> bytes, size_t at, uint32_t value) {
    std::memcpy(&bytes[at], &value, 4);
}

// The first set bit that is not below `from`.
std::optional<uint64_t> bitFrom(ByteView bits, uint64_t from) {
    for (uint64_t byte = from / 8; byte < bits.size(); ++byte) {
        unsigned value = bits.data()[byte];
        if (byte == from / 8) value &= 0xffu << (from % 8);
        if (value != 0) return byte * 8 + static_cast<unsigned>(std::countr_zero(value));
    }
    return std::nullopt;
}

// The last set bit that is not above `to`.
std::optional<uint64_t> bitUpTo(ByteView bits, uint64_t to) {
    if (bits.empty()) return std::nullopt;
    const uint64_t first = std::min<uint64_t>(to / 8, bits.size() - 1);
    for (uint64_t byte = first + 1; byte-- > 0;) {
        uint8_t value = bits.data()[byte];
        if (byte == to / 8) value &= static_cast<uint8_t>(0xff >> (7 - to % 8));
        if (value != 0) return byte * 8 + 7 - static_cast<unsigned>(std::countl_zero(value));
    }
    return std::nullopt;
}

std::optional<uint32_t> asPage(uint64_t page) {
    return page <= lastPage ? std::optional(static_cast<uint32_t>(page)) : std::nullopt;
}

}  // namespace

MapRecord::MapRecord(const PageStore& store, RowId id) : id_(id) {
    const DataPage page(store, id.page);
    const ByteView record = page.rowBytes(id.row);
    if (page.isDeleted(id.row) || page.isLookup(id.row))
        throwDamaged(L"the record of a usage map is deleted", id.page);
    offset_ = static_cast<size_t>(record.end() - page.bytes().begin()) - record.size();
    size_ = record.size();
    const uint8_t kind = record.get8(0);
    if (kind == maps::inlineKind) {
        firstPage_ = record.get32(maps::firstPage);
    } else if (kind == maps::referencedKind && size_ >= maps::mapPages + 4) {
        isInline_ = false;
    } else {
        throwDamaged(L"a usage map of the unknown kind " + std::to_wstring(kind), id.page);
    }
}

ByteView MapRecord::bits(const PageRef& page) const {
    return page->sub(offset_, size_).from(maps::inlineBits);
}

uint32_t MapRecord::mapPage(const PageStore& store, size_t place) const {
    if (place >= listSize())
        throwDamaged(L"a usage map has no room for the file's pages", id_.page);
    return read(store)->get32(offset_ + maps::mapPages + 4 * place);
}

bool MapRecord::covers(const PageStore& store, uint32_t page) const {
    if (isInline_) return page >= firstPage_ && page - firstPage_ < bitCount();
    return mapPage(store, page / bitsOfMapPage(store)) != 0;
}

bool MapRecord::contains(const PageStore& store, uint32_t page) const {
    if (!covers(store, page)) return false;
    if (isInline_) {
        const uint32_t bit = page - firstPage_;
        return (bits(read(store)).get8(bit / 8) >> (bit % 8) & 1) != 0;
    }
    const uint64_t perPage = bitsOfMapPage(store);
    const uint64_t bit = page % perPage;
    const PageRef map = store.read(mapPage(store, page / perPage), PageKind::UsageMap);
    return (map->get8(maps::pageBits + bit / 8) >> (bit % 8) & 1) != 0;
}

std::optional<uint32_t> MapRecord::next(const PageStore& store, uint32_t from) const {
    if (isInline_) {
        const auto bit = bitFrom(bits(read(store)), from > firstPage_ ? from - firstPage_ : 0);
        return bit ? asPage(*bit + firstPage_) : std::nullopt;
    }
    const uint64_t perPage = bitsOfMapPage(store);
    for (uint64_t range = from / perPage; range < listSize(); ++range) {
        const uint32_t number = mapPage(store, range);
        if (number == 0) continue;
        const PageRef map = store.read(number, PageKind::UsageMap);
        const uint64_t start = range == from / perPage ? from % perPage : 0;
        if (const auto bit = bitFrom(map->from(maps::pageBits), start))
            return asPage(range * perPage + *bit);
    }
    return std::nullopt;
}

std::optional<uint32_t> MapRecord::previous(const PageStore& store, uint32_t from) const {
    if (isInline_) {
        if (from < firstPage_) return std::nullopt;
        const auto bit = bitUpTo(bits(read(store)), from - firstPage_);
        return bit ? asPage(*bit + firstPage_) : std::nullopt;
    }
    const uint64_t perPage = bitsOfMapPage(store);
    for (uint64_t range = std::min<uint64_t>(from / perPage + 1, listSize()); range-- > 0;) {
        const uint32_t number = mapPage(store, range);
        if (number == 0) continue;
        const PageRef map = store.read(number, PageKind::UsageMap);
        const uint64_t end = range == from / perPage ? from % perPage : perPage - 1;
        if (const auto bit = bitUpTo(map->from(maps::pageBits), end))
            return asPage(range * perPage + *bit);
    }
    return std::nullopt;
}

void MapRecord::set(WriteTransaction& pages, uint32_t page, bool on) const {
    uint32_t number = id_.page;
    size_t at = offset_ + maps::inlineBits;
    uint64_t bit = page - firstPage_;
    if (!isInline_) {
        const uint64_t perPage = bitsOfMapPage(pages);
        number = mapPage(pages, page / perPage);
        pages.read(number, PageKind::UsageMap);
        at = maps::pageBits;
        bit = page % perPage;
    }
    uint8_t& byte = pages.write(number)[at + bit / 8];
    const auto mask = static_cast<uint8_t>(1u << (bit % 8));
    byte = static_cast<uint8_t>(on ? byte | mask : byte & ~mask);
}

void MapRecord::moveTo(WriteTransaction& pages, uint32_t firstPage) {
    const std::span<uint8_t> record = pages.write(id_.page).subspan(offset_, size_);
    std::fill(record.begin() + maps::inlineBits, record.end(), uint8_t(0));
    put32(record, maps::firstPage, firstPage);
    firstPage_ = firstPage;
}

void MapRecord::makeReferenced(WriteTransaction& pages) {
    const std::span<uint8_t> record = pages.write(id_.page).subspan(offset_, size_);
    std::fill(record.begin(), record.end(), uint8_t(0));
    record[0] = maps::referencedKind;
    isInline_ = false;
    firstPage_ = 0;
}

void MapRecord::addMapPage(WriteTransaction& pages, size_t place, uint32_t page) const {
    const std::span<uint8_t> bytes = pages.write(page);
    std::fill(bytes.begin(), bytes.end(), uint8_t(0));
    bytes[0] = static_cast<uint8_t>(PageKind::UsageMap);
    bytes[1] = 1;
    put32(pages.write(id_.page), offset_ + maps::mapPages + 4 * place, page);
}

}  // namespace sg::jet
