#include "host/dwg/bit_writer.h"
#include "host/dwg/sentinels.h"
#include "host/dwg/write_container.h"

namespace sg::dwg {

namespace {

constexpr size_t kCountAt = 20;    // how many pictures there are
constexpr size_t kRecordSize = 9;  // of a picture: its kind, address and size

Bytes emptyPreview() {
    BitWriter writer;
    writer.rawBytes(kPreviewStart.data(), kPreviewStart.size());
    writer.rawLong(1);
    writer.rawChar(0);
    const Sentinel end = endOf(kPreviewStart);
    writer.rawBytes(end.data(), end.size());
    return writer.bytes();
}

}  // namespace

void placePreview(Bytes& preview, size_t address) {
    if (preview.size() <= kCountAt) {
        preview = emptyPreview();
        return;
    }
    const size_t count = preview[kCountAt];
    size_t at = kCountAt + 1 + count * kRecordSize;
    for (size_t i = 0; i < count; ++i) {
        const size_t record = kCountAt + 1 + i * kRecordSize;
        const size_t size = longAt(preview, record + 5);
        if (at > preview.size() || size > preview.size() - at) {
            preview = emptyPreview();
            return;
        }
        const size_t place = address + at;
        for (size_t byte = 0; byte < 4; ++byte)
            preview[record + 1 + byte] = static_cast<uint8_t>(place >> (8 * byte));
        at += size;
    }
}

Bytes templateSection(const FileParts& parts) {
    BitWriter writer;
    const bool isWide = parts.release >= AcDb::kDHL_1021;
    writer.rawShort(isWide ? 1 : 0);
    if (isWide) writer.rawShort(0);  // the text's zero
    writer.rawShort(static_cast<uint16_t>(parts.measurement));
    return writer.bytes();
}

}  // namespace sg::dwg
