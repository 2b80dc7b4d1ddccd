#include "host/dwg/section_streams.h"

#include <algorithm>

#include "host/dwg/checksums.h"

namespace sg::dwg {
namespace {

constexpr size_t kSentinelSize = 16;
constexpr size_t kHighSize = 0x8000;  // marks a size of more than 15 bits

// From release 2010 on the size has 64 bits, but for the first files of it.
size_t sizeBytes(AcDb::AcDbDwgVersion release, uint8_t maintenance) {
    const bool isLong =
        release >= AcDb::kDHL_1032 || (release >= AcDb::kDHL_1024 && maintenance > 3);
    return isLong ? 8 : 4;
}

}  // namespace

void takeTexts(ReadStreams& streams, size_t end) {
    const ByteSpan bytes = streams.data.bytes();
    const size_t begin = streams.data.position();
    if (end <= begin || end > streams.data.end()) {
        streams.data = BitReader(bytes, begin, begin);
        return;
    }
    size_t at = end - 1;
    size_t size = 0;
    if (BitReader(bytes, at, end).bit() && at >= begin + 16) {
        at -= 16;
        size = BitReader(bytes, at, end).rawShort();
        if ((size & kHighSize) != 0 && at >= begin + 16) {
            at -= 16;
            const size_t high = BitReader(bytes, at, end).rawShort();
            size = (size & ~kHighSize) | high << 15;
        }
        size = std::min(size, at - begin);
    }
    streams.texts = BitReader(bytes, at - size, at);
    streams.data = BitReader(bytes, begin, at - size);
}

ReadStreams openSection(FileContent& content, const std::wstring& file, std::string_view name,
                        const Sentinel& start) {
    const ByteSpan bytes = content.find(name);
    const auto fail = [&](const wchar_t* what) {
        return Error(file + L": the section " + fromUtf8(name) + what);
    };
    if (bytes.size() < kSentinelSize + 8) throw fail(L" is missing");
    if (!std::equal(start.begin(), start.end(), bytes.begin())) throw fail(L" is damaged");
    const size_t sizes = sizeBytes(content.release, content.maintenance);
    const size_t size = longAt(bytes, kSentinelSize);
    const size_t begin = kSentinelSize + sizes;
    if (size > bytes.size() - begin) throw fail(L" ends too early");
    const uint16_t crc = crc16(kSectionSeed, bytes.subspan(kSentinelSize, sizes + size));
    if (bytes.size() >= begin + size + 2 && crc != shortAt(bytes, begin + size)) {
        content.warnings.push_back(file + L": the check number of the section " + fromUtf8(name) +
                                   L" is wrong");
    }
    const size_t end = (begin + size) * 8;
    ReadStreams streams;
    if (content.release < AcDb::kDHL_1021) {
        streams.data = BitReader(bytes, begin * 8, end);
        return streams;
    }
    const size_t dataEnd = std::min<size_t>(begin * 8 + longAt(bytes, begin), end);
    streams.data = BitReader(bytes, (begin + 4) * 8, dataEnd);
    streams.handles = BitReader(bytes, dataEnd, end);
    takeTexts(streams, dataEnd);
    return streams;
}

void appendTexts(BitWriter& data, BitWriter& texts) {
    const size_t size = texts.position();
    if (size != 0) {
        data.bitsOf(texts.bytes(), size);
        if (size >= kHighSize) data.rawShort(static_cast<uint16_t>(size >> 15));
        data.rawShort(static_cast<uint16_t>(size < kHighSize ? size : size | kHighSize));
    }
    data.bit(size != 0);
}

Bytes closeSection(AcDb::AcDbDwgVersion release, const Sentinel& start, BitWriter& data,
                   BitWriter& texts, BitWriter& handles) {
    BitWriter body;
    if (release < AcDb::kDHL_1021) {
        const size_t size = data.position();
        body.bitsOf(data.bytes(), size);
    } else {
        appendTexts(data, texts);
        const size_t size = data.position();
        body.rawLong(static_cast<uint32_t>(size + 32));
        body.bitsOf(data.bytes(), size);
        const size_t handleSize = handles.position();
        body.bitsOf(handles.bytes(), handleSize);
    }
    const Bytes& bytes = body.bytes();
    BitWriter section;
    section.rawBytes(start.data(), start.size());
    section.rawLong(static_cast<uint32_t>(bytes.size()));
    if (sizeBytes(release, maintenanceOf(release)) == 8) section.rawLong(0);
    section.rawBytes(bytes.data(), bytes.size());
    section.rawShort(crc16(kSectionSeed, ByteSpan(section.bytes()).subspan(kSentinelSize)));
    const Sentinel end = endOf(start);
    section.rawBytes(end.data(), end.size());
    return section.bytes();
}

}  // namespace sg::dwg
