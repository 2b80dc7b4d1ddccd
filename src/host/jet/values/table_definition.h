#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/format/format.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/page_store.h"

// What a table's definition pages say of its columns and indexes. See docs/formats/jet.md, "Table
// definitions".
namespace sg::jet {

// A text order: locale id and version. 0x0409 with version 0 is General of the .mdb files, with
// version 1 that of newer .accdb files.
struct SortOrder {
    uint16_t id = 0;
    uint8_t version = 0;

    bool operator==(const SortOrder&) const = default;
};

struct Column {
    std::wstring name;
    ColumnType type = ColumnType::Long;
    uint16_t number = 0;         // counts deleted columns too: the column's bit in the null mask
    uint16_t ordinal = 0;        // the place in which programs show it
    uint16_t variableIndex = 0;  // entry of a row's variable column table
    uint16_t fixedOffset = 0;    // of a fixed column, behind the row's column count
    uint16_t length = 0;         // bytes; 0 for long values
    uint8_t flags = 0;           // columns::...Flag
    uint8_t extraFlags = 0;      // columns::compressedFlag, columns::calculatedMask
    uint8_t precision = 0;       // Numeric only, as scale
    uint8_t scale = 0;
    SortOrder sortOrder;     // Text and Memo only
    uint16_t codePage = 0;   // Text and Memo of Jet 3 only; 0 otherwise
    uint32_t complexId = 0;  // Complex only: the row of MSysComplexColumns
    // Long values only: the maps of the pages that this column's values own. Absent in files whose
    // tables keep them with the rows' pages.
    std::optional<RowId> ownedPages;
    std::optional<RowId> freePages;

    bool isFixed() const { return (flags & columns::fixedFlag) != 0; }
    // Columns of other types may have the flag for identifiers, where it means nothing.
    bool isAutoNumber() const {
        return (flags & columns::autoNumberFlag) != 0 ||
               (type == ColumnType::Guid && (flags & columns::autoGuidFlag) != 0);
    }
    bool isHyperlink() const {
        return type == ColumnType::Memo && (flags & columns::hyperlinkFlag);
    }
    bool isCompressed() const { return (extraFlags & columns::compressedFlag) != 0; }
    bool isCalculated() const { return (extraFlags & columns::calculatedMask) != 0; }
    bool isLongValue() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
    bool isText() const { return type == ColumnType::Text || type == ColumnType::Memo; }

    bool operator==(const Column&) const = default;
};

struct IndexColumn {
    uint16_t column = 0;  // Column::number
    bool ascending = true;

    bool operator==(const IndexColumn&) const = default;
};

// A B-tree. Several logical indexes may stand on one.
struct RealIndex {
    std::vector<IndexColumn> columns;  // one to ten, most significant first
    RowId ownedPages;                  // its usage map
    uint32_t rootPage = 0;
    uint8_t flags = 0;        // indexes::...Flag
    uint32_t entryCount = 0;  // as the definition's head has it

    bool isUnique() const { return (flags & indexes::uniqueFlag) != 0; }
    bool ignoresNulls() const { return (flags & indexes::ignoreNullsFlag) != 0; }
    bool isRequired() const { return (flags & indexes::requiredFlag) != 0; }
};

enum class IndexKind : uint8_t { Normal = 0, Primary = 1, Foreign = 2 };

// An index as programs see it, or one end of a relation that is enforced.
struct LogicalIndex {
    std::wstring name;
    uint32_t number = 0;  // unique in the table; what the other end of a relation names
    uint32_t realIndex = 0;
    IndexKind kind = IndexKind::Normal;
    // Foreign only:
    static constexpr uint8_t referredTo = 1;
    static constexpr uint8_t refers = 2;
    uint8_t relatedType = 0;        // what the table is in the relation
    uint32_t relatedIndex = 0;      // LogicalIndex::number in the other table
    uint32_t relatedTablePage = 0;  // definition page of the other table
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool nullsOnDelete = false;  // rows that referred to one that goes refer to none

    bool isForeign() const { return kind == IndexKind::Foreign; }
    bool isPrimary() const { return kind == IndexKind::Primary; }

    bool operator==(const LogicalIndex&) const = default;
};

struct SG_API TableDefinition {
    uint32_t page = 0;
    std::wstring name;            // the catalog's; empty until somebody fills it in
    std::vector<uint32_t> pages;  // the chain, `page` first
    uint32_t rowCount = 0;
    uint32_t lastAutoNumber = 0;
    uint32_t autoNumberStep = 1;  // from one number to the next, modulo 2^32; never 0
    uint32_t lastComplexAutoNumber = 0;
    bool isSystem = false;
    uint16_t maxColumns = 0;  // columns that a row may have, deleted ones too
    uint16_t variableColumns = 0;
    RowId ownedPages;
    RowId freePages;
    std::vector<Column> columns;  // by number
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> indexes;  // in the order of the file

    // Reads the definition that begins on `page`. Throws Damaged when it contradicts itself: counts
    // beyond the definition's size, a chain that comes back to itself, two columns with a number,
    // an index over a column that is not there.
    static TableDefinition read(const PageStore& store, uint32_t page);

    // Place in `columns` of the column with this number, or with this name ignoring case.
    std::optional<size_t> columnByNumber(uint16_t number) const;
    std::optional<size_t> columnByName(std::wstring_view name) const;
    // Ignoring case; nullptr when there is none.
    const LogicalIndex* indexByName(std::wstring_view name) const;
    const LogicalIndex* primaryKey() const;
    const RealIndex& realOf(const LogicalIndex& index) const {
        return realIndexes[index.realIndex];
    }
};

}  // namespace sg::jet
