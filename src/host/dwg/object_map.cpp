#include "host/dwg/object_map.h"

#include "host/dwg/bit_reader.h"
#include "host/dwg/bit_writer.h"
#include "host/dwg/checksums.h"

// The map is cut into parts. Each has its size and check number with the highest byte first, and
// counts handles and addresses from zero.

namespace sg::dwg {
namespace {

constexpr size_t kMostBytes = 2030;  // of a part, its size included
constexpr size_t kLongestEntry = 20;

uint16_t bigShortAt(ByteSpan bytes, size_t at) {
    return __builtin_bswap16(shortAt(bytes, at));
}

void readPart(ByteSpan part, std::vector<ObjectPlace>& places) {
    BitReader reader(part);
    ObjectPlace place;
    while (reader.left() >= 16) {
        place.handle += reader.unsignedModularChar();
        place.address += static_cast<uint64_t>(reader.modularChar());
        if (reader.hasFailed()) return;
        places.push_back(place);
    }
}

void appendPart(Bytes& map, BitWriter& entries) {
    const Bytes& bytes = entries.bytes();
    const size_t size = bytes.size() + 2;
    const size_t start = map.size();
    map.push_back(static_cast<uint8_t>(size >> 8));
    map.push_back(static_cast<uint8_t>(size));
    map.insert(map.end(), bytes.begin(), bytes.end());
    const uint16_t crc = crc16(kSectionSeed, ByteSpan(map).subspan(start));
    map.push_back(static_cast<uint8_t>(crc >> 8));
    map.push_back(static_cast<uint8_t>(crc));
    entries.clear();
}

}  // namespace

std::vector<ObjectPlace> readObjectMap(FileContent& content, const std::wstring& file) {
    const ByteSpan map = content.find(section::kObjectMap);
    if (map.empty()) throw Error(file + L": the file's map of objects is missing");
    std::vector<ObjectPlace> places;
    size_t at = 0;
    while (at + 4 <= map.size()) {
        const size_t size = bigShortAt(map, at);
        if (size <= 2) break;
        if (at + size + 2 > map.size()) {
            content.warnings.push_back(file + L": the map of objects ends too early");
            break;
        }
        const ByteSpan part = map.subspan(at, size);
        if (crc16(kSectionSeed, part) != bigShortAt(map, at + size)) {
            content.warnings.push_back(file +
                                       L": the check number of a part of the map of objects is "
                                       L"wrong");
        }
        readPart(part.subspan(2), places);
        at += size + 2;
    }
    return places;
}

Bytes writeObjectMap(const std::vector<ObjectPlace>& places) {
    Bytes map;
    BitWriter entries;
    ObjectPlace last;
    for (const ObjectPlace& place : places) {
        if (entries.position() / 8 + 2 + kLongestEntry > kMostBytes) {
            appendPart(map, entries);
            last = {};
        }
        entries.unsignedModularChar(place.handle - last.handle);
        entries.modularChar(static_cast<int64_t>(place.address - last.address));
        last = place;
    }
    if (!entries.isEmpty()) appendPart(map, entries);
    appendPart(map, entries);
    return map;
}

}  // namespace sg::dwg
