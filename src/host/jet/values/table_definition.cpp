#include "host/jet/values/table_definition.h"

#include <algorithm>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/text_codec.h"

namespace sg::jet {
namespace {

// More than the largest definition needs.
constexpr size_t mostPages = 256;
constexpr size_t nextPageHead = 8;  // of a page after the first: kind, pointer to the next
constexpr uint8_t systemTable = 0x53;

// The definition's pages as one run of bytes, the heads of the later pages left out.
std::vector<uint8_t> joinPages(const PageStore& store, uint32_t first,
                               std::vector<uint32_t>& pages) {
    const TableLayout& layout = store.format().table;
    std::vector<uint8_t> bytes;
    for (uint32_t page = first; page != 0;) {
        if (pages.size() == mostPages ||
            std::find(pages.begin(), pages.end(), page) != pages.end()) {
            throwDamaged(L"the chain of a table's definition pages does not end", page);
        }
        pages.push_back(page);
        const PageRef ref = store.read(page, PageKind::TableDefinition);
        const ByteView part = bytes.empty() ? ref.bytes() : ref->from(nextPageHead);
        bytes.insert(bytes.end(), part.begin(), part.end());
        page = ref->get32(layout.nextPage);
    }
    return bytes;
}

// Reads the parts of a definition in the order in which they stand.
class DefinitionReader {
  public:
    DefinitionReader(const Format& format, ByteView bytes, TableDefinition& table)
        : format_(format), bytes_(bytes), table_(table) {}

    void read() {
        readHead();
        at_ = format_.table.head;
        readIndexCounts();
        readColumns();
        readRealIndexes();
        readLogicalIndexes();
        readLongValueMaps();
        checkColumns();
        checkIndexes();
    }

  private:
    // The next `size` bytes.
    ByteView take(size_t size) {
        const ByteView part = bytes_.sub(at_, size);
        at_ += size;
        return part;
    }

    std::wstring takeName() {
        const ByteView length = take(format_.nameLengthSize);
        return decodeName(take(format_.nameLengthSize == 1 ? length.get8(0) : length.get16(0)),
                          format_);
    }

    void readHead();
    void readIndexCounts();
    void readColumns();
    Column readColumn(ByteView record) const;
    void readRealIndexes();
    void readLogicalIndexes();
    void readLongValueMaps();
    void checkColumns();
    void checkIndexes() const;

    const Format& format_;
    ByteView bytes_;
    TableDefinition& table_;
    size_t at_ = 0;
    size_t columnCount_ = 0;
    uint32_t logicalCount_ = 0;
    uint32_t realCount_ = 0;
};

void DefinitionReader::readHead() {
    const TableLayout& layout = format_.table;
    // The length leaves out the first page's head. What stands behind it is left from other uses.
    const uint64_t length = uint64_t(bytes_.get32(layout.length)) + nextPageHead;
    if (length > bytes_.size()) {
        throwDamaged(L"a table's definition of " + std::to_wstring(length) +
                     L" bytes is longer than its pages");
    }
    bytes_ = bytes_.sub(0, static_cast<size_t>(length));
    table_.rowCount = bytes_.get32(layout.rowCount);
    table_.lastAutoNumber = bytes_.get32(layout.autoNumber);
    const uint32_t step = layout.autoNumberStep == 0 ? 0 : bytes_.get32(layout.autoNumberStep);
    table_.autoNumberStep = step == 0 ? 1 : step;
    if (layout.complexAutoNumber != 0) {
        table_.lastComplexAutoNumber = bytes_.get32(layout.complexAutoNumber);
    }
    table_.isSystem = bytes_.get8(layout.tableType) == systemTable;
    table_.maxColumns = bytes_.get16(layout.maxColumns);
    table_.variableColumns = bytes_.get16(layout.variableColumns);
    table_.ownedPages = RowId::fromPacked(bytes_.get32(layout.ownedPages));
    table_.freePages = RowId::fromPacked(bytes_.get32(layout.freePages));
    columnCount_ = bytes_.get16(layout.columns);
    logicalCount_ = bytes_.get32(layout.logicalIndexes);
    realCount_ = bytes_.get32(layout.realIndexes);
    if (columnCount_ > columns::maxColumns) {
        throwDamaged(L"a table's definition tells of " + std::to_wstring(columnCount_) +
                     L" columns");
    }
}

void DefinitionReader::readIndexCounts() {
    for (uint32_t i = 0; i < realCount_; ++i) {
        RealIndex index;
        index.entryCount = take(format_.index.countSize).get32(format_.index.countRows);
        table_.realIndexes.push_back(std::move(index));
    }
}

void DefinitionReader::readColumns() {
    for (size_t i = 0; i < columnCount_; ++i) {
        table_.columns.push_back(readColumn(take(format_.column.size)));
    }
    for (Column& column : table_.columns) {
        column.name = takeName();
    }
}

Column DefinitionReader::readColumn(ByteView record) const {
    const ColumnLayout& layout = format_.column;
    Column column;
    column.type = static_cast<ColumnType>(record.get8(0));
    column.number = record.get16(layout.number);
    column.ordinal = record.get16(layout.ordinal);
    column.variableIndex = record.get16(layout.variableIndex);
    column.fixedOffset = record.get16(layout.fixedOffset);
    column.length = record.get16(layout.length);
    column.flags = record.get8(layout.flags);
    if (layout.extraFlags != 0) {
        column.extraFlags = record.get8(layout.extraFlags);
    }
    if (column.isText()) {
        column.sortOrder.id = record.get16(layout.sortOrder);
        if (layout.sortVersion != 0) {
            column.sortOrder.version = record.get8(layout.sortVersion);
        }
        if (layout.codePage != 0) {
            column.codePage = record.get16(layout.codePage);
        }
    } else if (column.type == ColumnType::Numeric) {
        column.precision = record.get8(layout.precision);
        column.scale = record.get8(layout.scale);
    } else if (column.type == ColumnType::Complex) {
        column.complexId = record.get32(layout.sortOrder);
    }
    return column;
}

void DefinitionReader::readRealIndexes() {
    const IndexLayout& layout = format_.index;
    for (RealIndex& index : table_.realIndexes) {
        const ByteView record = take(layout.realSize);
        for (size_t i = 0; i < indexes::maxColumns; ++i) {
            const ByteView entry =
                record.sub(layout.realColumns + i * indexes::columnSize, indexes::columnSize);
            if (entry.get16(0) != columns::none) {
                index.columns.push_back(
                    {entry.get16(0), (entry.get8(2) & indexes::ascendingFlag) != 0});
            }
        }
        index.ownedPages = RowId::fromPacked(record.get32(layout.realUsageMap));
        index.rootPage = record.get32(layout.realRoot);
        index.flags = record.get8(layout.realFlags);
    }
}

void DefinitionReader::readLogicalIndexes() {
    for (uint32_t i = 0; i < logicalCount_; ++i) {
        const ByteView record = take(format_.index.logicalSize).from(format_.index.logicalNumber);
        LogicalIndex index;
        index.number = record.get32(0);
        index.realIndex = record.get32(indexes::logicalReal);
        index.kind = static_cast<IndexKind>(record.get8(indexes::logicalKind));
        if (index.isForeign()) {
            index.relatedType = record.get8(indexes::logicalRelatedType);
            index.relatedIndex = record.get32(indexes::logicalRelatedIndex);
            index.relatedTablePage = record.get32(indexes::logicalRelatedPage);
            index.cascadeUpdates =
                (record.get8(indexes::logicalCascadeUpdate) & indexes::cascadeFlag) != 0;
            const uint8_t onDelete = record.get8(indexes::logicalCascadeDelete);
            index.cascadeDeletes = (onDelete & indexes::cascadeFlag) != 0;
            index.nullsOnDelete = (onDelete & indexes::setNullFlag) != 0;
        }
        table_.indexes.push_back(std::move(index));
    }
    for (LogicalIndex& index : table_.indexes) {
        index.name = takeName();
    }
}

// Records of a column number and two maps, ended by a number that no column has. Those of deleted
// columns may stand among them.
void DefinitionReader::readLongValueMaps() {
    while (bytes_.size() - at_ >= 2) {
        const uint16_t number = take(2).get16(0);
        if (number == columns::none) {
            return;
        }
        const ByteView record = take(8);
        for (Column& column : table_.columns) {
            if (column.number == number && column.isLongValue()) {
                column.ownedPages = RowId::fromPacked(record.get32(0));
                column.freePages = RowId::fromPacked(record.get32(4));
            }
        }
    }
}

void DefinitionReader::checkColumns() {
    auto& list = table_.columns;
    std::stable_sort(list.begin(), list.end(),
                     [](const Column& a, const Column& b) { return a.number < b.number; });
    const auto twice =
        std::adjacent_find(list.begin(), list.end(),
                           [](const Column& a, const Column& b) { return a.number == b.number; });
    if (twice != list.end()) {
        throwDamaged(L"columns " + twice->name + L" and " + std::next(twice)->name +
                     L" have the same number");
    }
}

void DefinitionReader::checkIndexes() const {
    for (const RealIndex& index : table_.realIndexes) {
        for (const IndexColumn& column : index.columns) {
            if (!table_.columnByNumber(column.column)) {
                throwDamaged(L"an index is over column number " + std::to_wstring(column.column) +
                             L", which is not there");
            }
        }
    }
    for (const LogicalIndex& index : table_.indexes) {
        if (index.realIndex >= table_.realIndexes.size()) {
            throwDamaged(L"index " + index.name + L" stands on none");
        }
    }
}

}  // namespace

TableDefinition TableDefinition::read(const PageStore& store, uint32_t page) {
    TableDefinition table;
    table.page = page;
    const std::vector<uint8_t> bytes = joinPages(store, page, table.pages);
    try {
        DefinitionReader(store.format(), {bytes.data(), bytes.size()}, table).read();
    } catch (Error& error) {
        error.addPage(page);
        throw;
    }
    return table;
}

std::optional<size_t> TableDefinition::columnByNumber(uint16_t number) const {
    const auto found =
        std::lower_bound(columns.begin(), columns.end(), number,
                         [](const Column& c, uint16_t wanted) { return c.number < wanted; });
    if (found == columns.end() || found->number != number) {
        return std::nullopt;
    }
    return static_cast<size_t>(found - columns.begin());
}

std::optional<size_t> TableDefinition::columnByName(std::wstring_view wanted) const {
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& c) {
        return equalIgnoringCase(c.name, wanted);
    });
    if (found == columns.end()) {
        return std::nullopt;
    }
    return static_cast<size_t>(found - columns.begin());
}

const LogicalIndex* TableDefinition::indexByName(std::wstring_view wanted) const {
    const auto found = std::find_if(indexes.begin(), indexes.end(), [&](const LogicalIndex& i) {
        return equalIgnoringCase(i.name, wanted);
    });
    return found == indexes.end() ? nullptr : &*found;
}

const LogicalIndex* TableDefinition::primaryKey() const {
    const auto found = std::find_if(indexes.begin(), indexes.end(),
                                    [](const LogicalIndex& i) { return i.isPrimary(); });
    return found == indexes.end() ? nullptr : &*found;
}

}  // namespace sg::jet
