#include "host/jet/storage/page_log_format.h"

#include <bit>
#include <cstring>

namespace sg::jet::log {
namespace {

// Offsets in the header.
constexpr size_t headerVersion = 4, headerPageSize = 8, headerBasePages = 12, headerSalt = 16,
                 headerBaseSequence = 24, headerBasePage0 = 32, headerChecksum = 56;
// In the mark.
constexpr size_t markSalt = 8, markChecksum = 16;
// In a record's head.
constexpr size_t recordFlags = 4, recordSequence = 8, recordEntries = 16, recordPageCount = 20,
                 recordChain = 32;
// In an entry.
constexpr size_t entryPage = 0, entryKind = 4, entryChecksum = 8, entryBase = 16;

// A delta's run: offset and length in two bytes each.
constexpr size_t runHead = 4;

template <class T>
void put(uint8_t* at, T value) {
    std::memcpy(at, &value, sizeof value);
}

template <class T>
T load(const uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

constexpr uint64_t factor1 = 0x9E3779B97F4A7C15, factor2 = 0xC2B2AE3D27D4EB4F;

// Multiplied on both sides of the sum: a change of one bit needs a change of many bits of the next
// word to be taken back.
uint64_t mixed(uint64_t lane, uint64_t word) {
    return std::rotl(lane + word * factor2, 29) * factor1;
}

uint64_t finished(uint64_t value) {
    value ^= value >> 32;
    value *= factor2;
    value ^= value >> 29;
    value *= factor1;
    return value ^ value >> 32;
}

}  // namespace

uint64_t checksum(uint64_t seed, std::span<const uint8_t> bytes) {
    // Four lanes, so that the multiplications overlap.
    uint64_t lanes[4] = {seed, seed ^ factor1, seed + factor2, ~seed};
    const uint8_t* at = bytes.data();
    size_t left = bytes.size();
    for (; left >= 32; left -= 32, at += 32) {
        for (size_t i = 0; i < 4; ++i) {
            lanes[i] = mixed(lanes[i], load<uint64_t>(at + 8 * i));
        }
    }
    uint8_t tail[32] = {};
    if (left > 0) std::memcpy(tail, at, left);
    uint64_t value = bytes.size();
    for (size_t i = 0; i < 4; ++i) {
        value = finished(value ^ mixed(lanes[i], load<uint64_t>(tail + 8 * i)));
    }
    return value;
}

std::vector<uint8_t> encode(const Header& header) {
    std::vector<uint8_t> bytes(headerSize);
    put(&bytes[0], fileMagic);
    put(&bytes[headerVersion], formatVersion);
    put(&bytes[headerPageSize], header.pageSize);
    put(&bytes[headerBasePages], header.basePages);
    put(&bytes[headerSalt], header.salt);
    put(&bytes[headerBaseSequence], header.baseSequence);
    put(&bytes[headerBasePage0], header.basePage0);
    put(&bytes[headerChecksum], checksum(fileMagic, {bytes.data(), headerChecksum}));
    return bytes;
}

std::optional<Header> decodeHeader(ByteView bytes) {
    if (bytes.size() < headerSize || bytes.get32(0) != fileMagic ||
        bytes.get32(headerVersion) != formatVersion ||
        bytes.get64(headerChecksum) != checksum(fileMagic, bytes.sub(0, headerChecksum))) {
        return std::nullopt;
    }
    const Header header{.pageSize = bytes.get32(headerPageSize),
                        .basePages = bytes.get32(headerBasePages),
                        .salt = bytes.get64(headerSalt),
                        .baseSequence = bytes.get64(headerBaseSequence),
                        .basePage0 = bytes.get64(headerBasePage0)};
    const bool possible = (header.pageSize == 2048 || header.pageSize == 4096) &&
                          header.basePages <= maxPages && header.baseSequence < UINT64_MAX / 2;
    return possible ? std::optional(header) : std::nullopt;
}

std::vector<uint8_t> encodeMark(uint64_t salt) {
    std::vector<uint8_t> bytes(markSize);
    put(&bytes[0], markMagic);
    put(&bytes[4], formatVersion);
    put(&bytes[markSalt], salt);
    put(&bytes[markChecksum], checksum(markMagic, {bytes.data(), markChecksum}));
    return bytes;
}

bool isMark(ByteView bytes, uint64_t salt) {
    return bytes.size() >= markSize && bytes.get32(0) == markMagic &&
           bytes.get64(markSalt) == salt &&
           bytes.get64(markChecksum) == checksum(markMagic, bytes.sub(0, markChecksum));
}

std::optional<RecordHead> decodeRecordHead(ByteView bytes) {
    if (bytes.size() < recordHeadSize || bytes.get32(0) != recordMagic) return std::nullopt;
    const RecordHead head{.commit = (bytes.get32(recordFlags) & commitFlag) != 0,
                          .sequence = bytes.get64(recordSequence),
                          .pageCount = bytes.get32(recordPageCount),
                          .entries = bytes.get32(recordEntries),
                          .chain = bytes.get64(recordChain)};
    const bool possible = head.entries <= maxEntries && head.pageCount <= maxPages;
    return possible ? std::optional(head) : std::nullopt;
}

uint64_t chainOf(uint64_t previousChain, ByteView headAndDirectory) {
    const uint64_t head = checksum(previousChain, headAndDirectory.sub(0, recordChain));
    return checksum(head, headAndDirectory.from(recordHeadSize));
}

Entry decodeEntry(ByteView directory, size_t index) {
    const ByteView bytes = directory.sub(index * entrySize, entrySize);
    const uint32_t kind = bytes.get32(entryKind);
    return {.page = bytes.get32(entryPage),
            .size = kind & sizeMask,
            .delta = (kind & deltaFlag) != 0,
            .first = (kind & firstFlag) != 0,
            .checksum = bytes.get64(entryChecksum),
            .base = bytes.get64(entryBase)};
}

uint64_t encodeRecord(std::span<uint8_t> into, const RecordHead& head,
                      std::span<const Entry> entries, uint64_t previousChain) {
    uint8_t* at = into.data();
    std::memset(at, 0, recordHeadSize);
    put(at, recordMagic);
    put(at + recordFlags, head.commit ? commitFlag : 0u);
    put(at + recordSequence, head.sequence);
    put(at + recordEntries, static_cast<uint32_t>(entries.size()));
    put(at + recordPageCount, head.pageCount);
    uint8_t* next = at + recordHeadSize;
    for (const Entry& entry : entries) {
        put(next + entryPage, entry.page);
        put(next + entryKind,
            entry.size | (entry.delta ? deltaFlag : 0u) | (entry.first ? firstFlag : 0u));
        put(next + entryChecksum, entry.checksum);
        put(next + entryBase, entry.base);
        next += entrySize;
    }
    const uint64_t chain = chainOf(previousChain, {at, static_cast<size_t>(next - at)});
    put(at + recordChain, chain);
    return chain;
}

bool appendDelta(std::vector<uint8_t>& into, std::span<const uint8_t> before,
                 std::span<const uint8_t> after, size_t limit) {
    constexpr size_t word = sizeof(uint64_t);
    const size_t size = after.size();
    const size_t start = into.size();
    const auto differs = [&](size_t at) {
        return load<uint64_t>(before.data() + at) != load<uint64_t>(after.data() + at);
    };
    // Whole words: a page's size is a multiple of them, and runs one equal word apart are worth
    // joining.
    for (size_t at = 0; at + word <= size;) {
        if (!differs(at)) {
            at += word;
            continue;
        }
        size_t end = at + word;
        while (end + word <= size &&
               (differs(end) || (end + 2 * word <= size && differs(end + word)))) {
            end += word;
        }
        if (into.size() - start + runHead + (end - at) > limit) {
            into.resize(start);
            return false;
        }
        const size_t run = into.size();
        into.resize(run + runHead);
        put(&into[run], static_cast<uint16_t>(at));
        put(&into[run + 2], static_cast<uint16_t>(end - at));
        into.insert(into.end(), after.begin() + static_cast<ptrdiff_t>(at),
                    after.begin() + static_cast<ptrdiff_t>(end));
        at = end;
    }
    return true;
}

bool applyDelta(std::span<uint8_t> page, ByteView delta) {
    size_t at = 0;
    while (at < delta.size()) {
        if (delta.size() - at < runHead) return false;
        const size_t offset = delta.get16(at);
        const size_t length = delta.get16(at + 2);
        at += runHead;
        if (length > delta.size() - at || offset > page.size() || length > page.size() - offset) {
            return false;
        }
        if (length > 0) std::memcpy(page.data() + offset, delta.data() + at, length);
        at += length;
    }
    return true;
}

}  // namespace sg::jet::log
