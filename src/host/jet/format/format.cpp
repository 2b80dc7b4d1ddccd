#include "host/jet/format/format.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

constexpr Format makeJet3() {
    Format f{};
    f.version = Version::Jet3;
    f.pageSize = 2048;
    f.nameLengthSize = 1;
    f.wideText = false;
    f.inlineMapSize = 128;
    f.maxLongValueRow = 2032;
    f.maxFileSize = uint64_t(1) << 30;
    f.database = {.maskedStart = 0x18,
                  .maskedSize = 126,
                  .sortOrder = 0x3A,
                  .codePage = 0x3C,
                  .encodingKey = 0x3E,
                  .password = 0x42,
                  .passwordSize = 20,
                  .creationDate = 0};
    f.dataPage = {.freeSpace = 2, .owner = 4, .rowCount = 8, .rowDirectory = 10};
    f.table = {.nextPage = 4,
               .length = 8,
               .rowCount = 12,
               .autoNumber = 16,
               .autoNumberStep = 0,
               .complexAutoNumber = 0,
               .tableType = 20,
               .maxColumns = 21,
               .variableColumns = 23,
               .columns = 25,
               .logicalIndexes = 27,
               .realIndexes = 31,
               .ownedPages = 35,
               .freePages = 39,
               .head = 43};
    f.column = {.size = 18,
                .number = 1,
                .variableIndex = 3,
                .ordinal = 5,
                .sortOrder = 9,
                .sortVersion = 0,
                .codePage = 11,
                .precision = 11,
                .scale = 12,
                .flags = 13,
                .extraFlags = 0,
                .fixedOffset = 14,
                .length = 16};
    f.index = {.countSize = 8,
               .countRows = 4,
               .realSize = 39,
               .realColumns = 0,
               .realUsageMap = 30,
               .realRoot = 34,
               .realFlags = 38,
               .logicalSize = 20,
               .logicalNumber = 0};
    f.indexPage = {.freeSpace = 2,
                   .owner = 4,
                   .previous = 8,
                   .next = 12,
                   .tail = 16,
                   .prefixLength = 20,
                   .level = 21,
                   .entryMask = 22,
                   .entries = 0xF8};
    f.row = {.countSize = 1, .hasJumpTable = true, .maxSize = 2012};
    return f;
}

constexpr Format makeJet4() {
    Format f{};
    f.version = Version::Jet4;
    f.pageSize = 4096;
    f.nameLengthSize = 2;
    f.wideText = true;
    f.inlineMapSize = 64;
    f.maxLongValueRow = 4076;
    f.maxFileSize = uint64_t(1) << 31;
    f.database = {.maskedStart = 0x18,
                  .maskedSize = 128,
                  .sortOrder = 0x6E,
                  .codePage = 0x3C,
                  .encodingKey = 0x3E,
                  .password = 0x42,
                  .passwordSize = 40,
                  .creationDate = 0x72};
    f.dataPage = {.freeSpace = 2, .owner = 4, .rowCount = 12, .rowDirectory = 14};
    f.table = {.nextPage = 4,
               .length = 8,
               .rowCount = 16,
               .autoNumber = 20,
               .autoNumberStep = 24,
               .complexAutoNumber = 0,
               .tableType = 40,
               .maxColumns = 41,
               .variableColumns = 43,
               .columns = 45,
               .logicalIndexes = 47,
               .realIndexes = 51,
               .ownedPages = 55,
               .freePages = 59,
               .head = 63};
    f.column = {.size = 25,
                .number = 5,
                .variableIndex = 7,
                .ordinal = 9,
                .sortOrder = 11,
                .sortVersion = 14,
                .codePage = 0,
                .precision = 11,
                .scale = 12,
                .flags = 15,
                .extraFlags = 16,
                .fixedOffset = 21,
                .length = 23};
    f.index = {.countSize = 12,
               .countRows = 4,
               .realSize = 52,
               .realColumns = 4,
               .realUsageMap = 34,
               .realRoot = 38,
               .realFlags = 46,
               .logicalSize = 28,
               .logicalNumber = 4};
    f.indexPage = {.freeSpace = 2,
                   .owner = 4,
                   .previous = 12,
                   .next = 16,
                   .tail = 20,
                   .prefixLength = 24,
                   .level = 26,
                   .entryMask = 27,
                   .entries = 0x1E0};
    f.row = {.countSize = 2, .hasJumpTable = false, .maxSize = 4060};
    return f;
}

constexpr Format makeAce(Version version) {
    Format f = makeJet4();
    f.version = version;
    f.table.complexAutoNumber = 28;
    return f;
}

constexpr std::array<Format, 7> formats = {
    makeJet3(),
    makeJet4(),
    makeAce(Version::Ace12),
    makeAce(Version::Ace14),
    makeAce(Version::Ace15),
    makeAce(Version::Ace16),
    makeAce(Version::Ace17),
};

// What every file begins with, up to the version byte.
constexpr std::string_view jetSignature{"\0\1\0\0Standard Jet DB\0", 20};
constexpr std::string_view aceSignature{"\0\1\0\0Standard ACE DB\0", 20};
static_assert(jetSignature.size() == pages::versionOffset);

}  // namespace

const Format& formatOf(Version version) {
    return formats.at(static_cast<size_t>(version));
}

const Format& identifyFormat(ByteView start, const std::wstring& fileName) {
    const std::string_view bytes(reinterpret_cast<const char*>(start.data()),
                                 std::min(start.size(), jetSignature.size()));
    const bool matches = !bytes.empty() && (jetSignature.substr(0, bytes.size()) == bytes ||
                                            aceSignature.substr(0, bytes.size()) == bytes);
    if (!matches) {
        throw Error(UnrecognizedFormat, {fileName},
                    {.file = fileName, .detail = L"it is not a database"});
    }
    if (start.size() <= pages::versionOffset) {
        throw Error(CannotOpenDatabase, {fileName},
                    {.file = fileName, .detail = L"the file is cut off"});
    }
    const uint8_t version = start.get8(pages::versionOffset);
    if (version >= formats.size()) {
        throw Error(UnrecognizedFormat, {fileName},
                    {.file = fileName,
                     .detail = L"its version " + std::to_wstring(version) +
                               L" is newer than any that is known"});
    }
    return formats[version];
}

}  // namespace sg::jet
