#include "host/jet/pages/usage_map.h"

#include <algorithm>
#include <bit>

#include "host/jet/format/error.h"
#include "host/jet/pages/data_page.h"

namespace sg::jet {
namespace {

// The first set bit of `bits` that is not below `from`.
std::optional<uint64_t> nextBit(ByteView bits, uint64_t from) {
    for (uint64_t byte = from / 8; byte < bits.size(); ++byte) {
        unsigned value = bits.data()[byte];
        if (byte == from / 8) {
            value &= 0xffu << (from % 8);
        }
        if (value != 0) {
            return byte * 8 + static_cast<unsigned>(std::countr_zero(value));
        }
    }
    return std::nullopt;
}

// The last set bit of `bits` that is below `before`.
std::optional<uint64_t> previousBit(ByteView bits, uint64_t before) {
    const uint64_t end = std::min<uint64_t>(before, bits.size() * 8);
    for (uint64_t byte = (end + 7) / 8; byte-- > 0;) {
        unsigned value = bits.data()[byte];
        if (end - byte * 8 < 8) {
            value &= (1u << (end - byte * 8)) - 1;
        }
        if (value != 0) {
            return byte * 8 + static_cast<unsigned>(std::bit_width(value)) - 1;
        }
    }
    return std::nullopt;
}

}  // namespace

UsageMap UsageMap::read(const PageStore& store, RowId record) {
    UsageMap map(store);
    const DataPage page(store, record.page);
    const ByteView bytes = page.rowBytes(record.row);
    const uint8_t kind = bytes.get8(0);
    if (kind == maps::inlineKind) {
        map.firstPage_ = bytes.get32(maps::firstPage);
        const ByteView bits = bytes.from(maps::inlineBits);
        map.bits_.assign(bits.begin(), bits.end());
    } else if (kind == maps::referencedKind) {
        const ByteView list = bytes.from(maps::mapPages);
        for (size_t at = 0; at + 4 <= list.size(); at += 4) {
            map.mapPages_.push_back(list.get32(at));
        }
        if (map.mapPages_.empty()) {
            throwDamaged(L"a usage map names no map pages", record.page);
        }
    } else {
        throwDamaged(L"a usage map of the unknown kind " + std::to_wstring(kind), record.page);
    }
    return map;
}

uint64_t UsageMap::bitsOfMapPage() const {
    return (store_->pageSize() - maps::pageBits) * 8;
}

std::optional<uint64_t> UsageMap::nextInline(uint64_t from) const {
    const auto bit =
        nextBit({bits_.data(), bits_.size()}, from > firstPage_ ? from - firstPage_ : 0);
    return bit ? std::optional(*bit + firstPage_) : std::nullopt;
}

std::optional<uint64_t> UsageMap::nextReferenced(uint64_t from) const {
    const uint64_t perPage = bitsOfMapPage();
    for (uint64_t range = from / perPage; range < mapPages_.size(); ++range) {
        if (mapPages_[range] == 0) {
            continue;
        }
        const PageRef page = store_->read(mapPages_[range], PageKind::UsageMap);
        const uint64_t start = range == from / perPage ? from % perPage : 0;
        if (const auto bit = nextBit(page->from(maps::pageBits), start)) {
            return range * perPage + *bit;
        }
    }
    return std::nullopt;
}

std::optional<uint64_t> UsageMap::previousInline(uint64_t before) const {
    const auto bit =
        previousBit({bits_.data(), bits_.size()}, before > firstPage_ ? before - firstPage_ : 0);
    return bit ? std::optional(*bit + firstPage_) : std::nullopt;
}

std::optional<uint64_t> UsageMap::previousReferenced(uint64_t before) const {
    const uint64_t perPage = bitsOfMapPage();
    const uint64_t end = std::min<uint64_t>(before, mapPages_.size() * perPage);
    for (uint64_t range = (end + perPage - 1) / perPage; range-- > 0;) {
        if (mapPages_[range] == 0) {
            continue;
        }
        const PageRef page = store_->read(mapPages_[range], PageKind::UsageMap);
        if (const auto bit = previousBit(page->from(maps::pageBits), end - range * perPage)) {
            return range * perPage + *bit;
        }
    }
    return std::nullopt;
}

std::optional<uint32_t> UsageMap::next(uint32_t from) const {
    const auto page = isInline() ? nextInline(from) : nextReferenced(from);
    // A set that reaches beyond what a page number can hold has no more pages.
    return page && *page <= 0xffffffff ? std::optional(static_cast<uint32_t>(*page)) : std::nullopt;
}

std::optional<uint32_t> UsageMap::previous(uint32_t before) const {
    const auto page = isInline() ? previousInline(before) : previousReferenced(before);
    return page ? std::optional(static_cast<uint32_t>(*page)) : std::nullopt;
}

bool UsageMap::contains(uint32_t page) const {
    return next(page) == page;
}

std::vector<uint32_t> UsageMap::pages() const {
    std::vector<uint32_t> all;
    for (auto page = next(0); page; page = next(*page + 1)) {
        if (*page >= store_->pageCount()) {
            throwDamaged(L"a usage map names a page beyond the file's end", *page);
        }
        all.push_back(*page);
    }
    return all;
}

}  // namespace sg::jet
