#include <algorithm>

#include "host/dwg/checksums.h"
#include "host/dwg/file_content.h"
#include "host/dwg/sentinels.h"

// Files up to release 2000: the first bytes tell where each section is.

namespace sg::dwg {
namespace {

constexpr size_t kRecords = 0x15;
constexpr size_t kRecordSize = 9;

// The sections by the number in their records.
constexpr std::string_view kNames[] = {section::kHeader,    section::kClasses,
                                       section::kObjectMap, section::kFreeSpace,
                                       section::kTemplate,  section::kAuxiliaryHeader};

// The picture of a drawing has no record; its size stands behind its mark.
ByteSpan previewAt(ByteSpan bytes, size_t at) {
    if (at == 0 || at + 20 > bytes.size()) return {};
    if (!std::equal(kPreviewStart.begin(), kPreviewStart.end(),
                    bytes.begin() + static_cast<ptrdiff_t>(at))) {
        return {};
    }
    const size_t size = 16 + 4 + static_cast<size_t>(longAt(bytes, at + 16)) + 16;
    return size > bytes.size() - at ? ByteSpan() : bytes.subspan(at, size);
}

}  // namespace

void readContainer2000(ByteSpan bytes, const std::wstring& file, FileContent& content) {
    const size_t count = longAt(bytes, kRecords);
    const size_t begin = kRecords + 4;
    if (count > 6 || begin + count * kRecordSize > bytes.size()) {
        throw Error(file + L": the drawing file's first bytes tell of " + std::to_wstring(count) +
                    L" sections");
    }
    for (size_t i = 0; i < count; ++i) {
        const size_t at = begin + i * kRecordSize;
        const size_t number = bytes[at];
        const size_t address = longAt(bytes, at + 1);
        const size_t size = longAt(bytes, at + 5);
        if (number >= std::size(kNames) || size == 0) continue;
        const std::string_view name = kNames[number];
        if (address >= bytes.size() || size > bytes.size() - address) {
            content.warnings.push_back(file + L": the section " + fromUtf8(name) +
                                       L" is not in the file");
            continue;
        }
        content.sections.push_back({std::string(name), bytes.subspan(address, size)});
    }
    const ByteSpan preview = previewAt(bytes, longAt(bytes, 0x0D));
    if (!preview.empty()) content.sections.push_back({std::string(section::kPreview), preview});
    // Objects lie where the map says, anywhere in the file.
    content.sections.push_back({std::string(section::kObjects), bytes});
}

}  // namespace sg::dwg
