#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/export.h"
#include "host/jet/format/byte_view.h"

// The layouts of the file format's versions: every offset once. docs/formats/jet.md explains the
// bytes; the sections named below are its headings.
namespace sg::jet {

// In the order of the version byte on page 0.
enum class Version : uint8_t {
    Jet3 = 0,
    Jet4 = 1,
    Ace12 = 2,
    Ace14 = 3,
    Ace15 = 4,
    Ace16 = 5,
    Ace17 = 6,
};

enum class PageKind : uint8_t {
    Database = 0,
    Data = 1,
    TableDefinition = 2,
    IndexNode = 3,
    IndexLeaf = 4,
    UsageMap = 5,
};

enum class ColumnType : uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Complex = 18,
    BigInteger = 19,
    DateTimeExtended = 20,
};

// The bytes of a value, where all of the type are as long; none for other types.
constexpr std::optional<uint16_t> valueSize(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
        case ColumnType::Complex:
            return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
        case ColumnType::BigInteger:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        case ColumnType::DateTimeExtended:
            return 42;
        default:
            return std::nullopt;
    }
}

// "The database page". Everything from `maskedStart` on, `maskedSize` bytes, is masked.
struct DatabasePageLayout {
    size_t maskedStart;
    size_t maskedSize;
    size_t sortOrder;
    size_t codePage;
    size_t encodingKey;
    size_t password;
    size_t passwordSize;
    size_t creationDate;  // 0 in Jet 3, which has none
};

// "Data pages".
struct DataPageLayout {
    size_t freeSpace;
    size_t owner;
    size_t rowCount;
    size_t rowDirectory;
};

// "Table definitions": the head, from the start of the definition's first page.
struct TableLayout {
    size_t nextPage;
    size_t length;
    size_t rowCount;
    size_t autoNumber;
    size_t autoNumberStep;     // 0 where there is none
    size_t complexAutoNumber;  // 0 where there is none
    size_t tableType;
    size_t maxColumns;
    size_t variableColumns;
    size_t columns;
    size_t logicalIndexes;
    size_t realIndexes;
    size_t ownedPages;
    size_t freePages;
    size_t head;  // the size of all the above: the index counts begin here
};

// One column's record.
struct ColumnLayout {
    size_t size;
    size_t number;
    size_t variableIndex;
    size_t ordinal;
    size_t sortOrder;
    size_t sortVersion;  // 0 in Jet 3, which has none
    size_t codePage;     // 0 where there is none
    size_t precision;
    size_t scale;
    size_t flags;
    size_t extraFlags;  // 0 in Jet 3, which has none
    size_t fixedOffset;
    size_t length;
};

// The three records that indexes have in a table's definition.
struct IndexLayout {
    size_t countSize;  // one real index's row count record
    size_t countRows;
    size_t realSize;  // one real index
    size_t realColumns;
    size_t realUsageMap;
    size_t realRoot;
    size_t realFlags;
    size_t logicalSize;  // one logical index
    size_t logicalNumber;
};

// "Index pages".
struct IndexPageLayout {
    size_t freeSpace;
    size_t owner;
    size_t previous;
    size_t next;
    size_t tail;
    size_t prefixLength;
    size_t level;
    size_t entryMask;
    size_t entries;  // where the mask ends and the first entry begins
};

// "Rows".
struct RowLayout {
    size_t countSize;   // of the column count, and of every entry of the variable column table
    bool hasJumpTable;  // offsets have one byte, and a jump table their high parts
    size_t maxSize;
};

struct Format {
    Version version;
    size_t pageSize;
    size_t nameLengthSize;   // of a column's or index's name
    bool wideText;           // UTF-16 with optional compression; otherwise the code page's bytes
    size_t inlineMapSize;    // bytes of an inline usage map's bitmap
    size_t maxLongValueRow;  // the longest row on a long value page
    uint64_t maxFileSize;
    DatabasePageLayout database;
    DataPageLayout dataPage;
    TableLayout table;
    ColumnLayout column;
    IndexLayout index;
    IndexPageLayout indexPage;
    RowLayout row;

    bool isJet3() const { return version == Version::Jet3; }
    bool isAce() const { return version >= Version::Ace12; }
};

// The layout of `version`; the same object each time.
SG_API const Format& formatOf(Version version);

// The version that the first bytes of a file tell. Throws UnrecognizedFormat with `fileName` when
// they are not those of a database or the version is newer than Ace17, and CannotOpenDatabase when
// there is less than the one page that would tell.
SG_API const Format& identifyFormat(ByteView start, const std::wstring& fileName);

// --- values that are the same in every version ---

namespace pages {
inline constexpr uint32_t globalMap = 1;  // the map of free pages stands on it
inline constexpr uint32_t catalog = 2;    // the definition of MSysObjects
inline constexpr size_t versionOffset = 0x14;
inline constexpr uint32_t longValueOwner = 0x4C41564C;  // "LVAL", where a data page has its owner
}  // namespace pages

namespace rows {
inline constexpr uint16_t deletedFlag = 0x8000;
inline constexpr uint16_t lookupFlag = 0x4000;  // the entry's bytes point to the row elsewhere
inline constexpr uint16_t offsetMask = 0x1fff;
inline constexpr size_t maxRows = 256;  // a row number has one byte
}  // namespace rows

namespace columns {
inline constexpr uint8_t fixedFlag = 0x01;
inline constexpr uint8_t updatableFlag = 0x02;
inline constexpr uint8_t autoNumberFlag = 0x04;
inline constexpr uint8_t replicationFlag = 0x10;
inline constexpr uint8_t autoGuidFlag = 0x40;
inline constexpr uint8_t hyperlinkFlag = 0x80;
inline constexpr uint8_t compressedFlag = 0x01;  // extra flags
inline constexpr uint8_t calculatedMask = 0xC0;  // extra flags
inline constexpr size_t maxColumns = 255;
inline constexpr uint16_t none = 0xffff;
}  // namespace columns

namespace indexes {
inline constexpr uint8_t uniqueFlag = 0x01;
inline constexpr uint8_t ignoreNullsFlag = 0x02;
inline constexpr uint8_t requiredFlag = 0x08;
inline constexpr uint8_t ascendingFlag = 0x01;  // of one column
inline constexpr size_t maxColumns = 10;
inline constexpr size_t columnSize = 3;  // number and order
// A logical index's record, from its number on.
inline constexpr size_t logicalReal = 4;
inline constexpr size_t logicalRelatedType = 8;
inline constexpr size_t logicalRelatedIndex = 9;
inline constexpr size_t logicalRelatedPage = 13;
inline constexpr size_t logicalCascadeUpdate = 17;
inline constexpr size_t logicalCascadeDelete = 18;
inline constexpr uint8_t cascadeFlag = 1;  // in these two
inline constexpr uint8_t setNullFlag = 2;  // in the second
inline constexpr size_t logicalKind = 19;
}  // namespace indexes

namespace longValues {
inline constexpr size_t headerSize = 12;
inline constexpr uint32_t inlineFlag = 0x80000000;
inline constexpr uint32_t singleFlag = 0x40000000;  // whole, in one row of another page
inline constexpr uint32_t lengthMask = 0x3fffffff;
inline constexpr size_t pointer = 4;  // the packed row id behind the length
}  // namespace longValues

namespace maps {
inline constexpr uint8_t inlineKind = 0;
inline constexpr uint8_t referencedKind = 1;
inline constexpr size_t firstPage = 1;   // inline: the page of the first bit
inline constexpr size_t inlineBits = 5;  // inline: where the bits begin
inline constexpr size_t mapPages = 1;    // referenced: where the list of map pages begins
inline constexpr size_t pageBits = 4;    // where the bits begin on a map page
}  // namespace maps

}  // namespace sg::jet
