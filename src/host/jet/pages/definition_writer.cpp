#include "host/jet/pages/definition_writer.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/database_header.h"
#include "host/jet/pages/definition_records.h"
#include "host/jet/values/text_codec.h"

namespace sg::jet {
namespace {

constexpr size_t mostIndexes = 32;  // of a table, logical ones
constexpr size_t freeSpace = 2;     // of a page: what is behind the definition's end
constexpr size_t headMark = 12;     // of the head
constexpr size_t columnMark = 1;    // of a column's record
constexpr size_t nameLengthMost = 0xfffe;
constexpr size_t endSize = 8;          // of zeros that every definition ends with
constexpr uint32_t tableMark = 0x659;  // in the head, in columns and in logical indexes
constexpr uint32_t treeMark = 0x783;   // in real indexes
constexpr uint8_t userTable = 0x4E;
constexpr uint8_t systemTable = 0x53;
constexpr uint8_t realIndexFlag = 0x80;
constexpr uint8_t noCascade = 4;  // where a logical index that is no relation's tells of cascades
constexpr uint32_t noIndex = 0xffffffff;

using Record = std::span<uint8_t>;

template <class T>
void put(Record bytes, size_t offset, T value) {
    std::memcpy(bytes.subspan(offset, sizeof(T)).data(), &value, sizeof(T));
}

void put8(Record bytes, size_t offset, uint8_t value) {
    put(bytes, offset, value);
}
void put16(Record bytes, size_t offset, uint16_t value) {
    put(bytes, offset, value);
}
void put32(Record bytes, size_t offset, uint32_t value) {
    put(bytes, offset, value);
}

// Puts the parts of a definition together in the order in which they stand.
class DefinitionBuilder {
  public:
    DefinitionBuilder(const Format& format, const DefinitionRecords& old,
                      const TableDefinition& table, SortOrder databaseOrder)
        : format_(format), old_(old), table_(table), databaseOrder_(databaseOrder) {}

    std::vector<uint8_t> build();

  private:
    Record add(size_t size);
    Record add(ByteView old);
    void addName(const std::wstring& name);
    void addHead();
    void addCount(const RealIndex& index);
    void orderColumns();
    void addColumn(const Column& column);
    void putExtra(Record record, const Column& column, bool isNew) const;
    void addRealIndex(const RealIndex& index);
    void addLogicalIndex(const LogicalIndex& index);
    void addMaps();
    void addMaps(const Column& column);

    const Format& format_;
    const DefinitionRecords& old_;
    const TableDefinition& table_;
    const SortOrder databaseOrder_;
    std::vector<const Column*> columns_;  // as their records stand
    std::vector<uint8_t> bytes_;
    Bytes name_;
};

// The next `size` bytes, zeros; valid until the next call.
Record DefinitionBuilder::add(size_t size) {
    bytes_.resize(bytes_.size() + size);
    return Record(bytes_).last(size);
}

Record DefinitionBuilder::add(ByteView old) {
    bytes_.insert(bytes_.end(), old.begin(), old.end());
    return Record(bytes_).last(old.size());
}

void DefinitionBuilder::addName(const std::wstring& name) {
    encodeName(name, name_);
    if (name_.size() > nameLengthMost) {
        throw Error(InvalidArgument, {name}, {.detail = L"a name is too long"});
    }
    put16(add(format_.nameLengthSize), 0, static_cast<uint16_t>(name_.size()));
    add(ByteView(name_));
}

std::vector<uint8_t> DefinitionBuilder::build() {
    orderColumns();
    addHead();
    for (const RealIndex& index : table_.realIndexes) {
        addCount(index);
    }
    for (const Column* column : columns_) {
        addColumn(*column);
    }
    for (const Column* column : columns_) {
        addName(column->name);
    }
    for (const RealIndex& index : table_.realIndexes) {
        addRealIndex(index);
    }
    for (const LogicalIndex& index : table_.indexes) {
        addLogicalIndex(index);
    }
    for (const LogicalIndex& index : table_.indexes) {
        addName(index.name);
    }
    addMaps();
    put32(bytes_, format_.table.length,
          static_cast<uint32_t>(bytes_.size() - definitions::nextPageHead));
    return std::move(bytes_);
}

void DefinitionBuilder::addHead() {
    const TableLayout& layout = format_.table;
    const Record head = old_.exists() ? add(old_.head()) : add(layout.head);
    if (!old_.exists()) {
        put32(head, headMark, tableMark);
        put32(head, layout.rowCount, table_.rowCount);
        put32(head, layout.autoNumber, table_.lastAutoNumber);
        put32(head, layout.autoNumberStep, table_.autoNumberStep);
    }
    put8(head, layout.tableType, table_.isSystem ? systemTable : userTable);
    put16(head, layout.maxColumns, table_.maxColumns);
    put16(head, layout.variableColumns, table_.variableColumns);
    put16(head, layout.columns, static_cast<uint16_t>(table_.columns.size()));
    put32(head, layout.logicalIndexes, static_cast<uint32_t>(table_.indexes.size()));
    put32(head, layout.realIndexes, static_cast<uint32_t>(table_.realIndexes.size()));
    put32(head, layout.ownedPages, table_.ownedPages.packed());
    put32(head, layout.freePages, table_.freePages.packed());
}

void DefinitionBuilder::addCount(const RealIndex& index) {
    if (const auto place = old_.realIndex(index.rootPage)) {
        add(old_.count(*place));
        return;
    }
    put32(add(format_.index.countSize), format_.index.countRows, index.entryCount);
}

// Columns stay where they are; new ones come behind them in the order in which programs show them,
// which is that of their names where it is the same.
void DefinitionBuilder::orderColumns() {
    std::vector<const Column*> added;
    for (const uint16_t number : old_.columnNumbers()) {
        if (const auto place = table_.columnByNumber(number)) {
            columns_.push_back(&table_.columns[*place]);
        }
    }
    for (const Column& column : table_.columns) {
        if (!old_.column(column.number)) {
            added.push_back(&column);
        }
    }
    std::stable_sort(added.begin(), added.end(), [](const Column* a, const Column* b) {
        return a->ordinal != b->ordinal ? a->ordinal < b->ordinal
                                        : upperCased(a->name) < upperCased(b->name);
    });
    columns_.insert(columns_.end(), added.begin(), added.end());
}

void DefinitionBuilder::addColumn(const Column& column) {
    const ColumnLayout& layout = format_.column;
    std::optional<ByteView> old = old_.column(column.number);
    if (old && old->get8(0) != static_cast<uint8_t>(column.type)) {
        old.reset();
    }
    const Record record = old ? add(*old) : add(layout.size);
    if (!old) {
        put8(record, 0, static_cast<uint8_t>(column.type));
        put32(record, columnMark, tableMark);
    }
    put16(record, layout.number, column.number);
    put16(record, layout.variableIndex, column.variableIndex);
    put16(record, layout.ordinal, column.ordinal);
    putExtra(record, column, !old);
    put8(record, layout.flags, column.flags);
    put8(record, layout.extraFlags, column.extraFlags);
    put16(record, layout.fixedOffset, column.fixedOffset);
    put16(record, layout.length, column.length);
}

// Four bytes that mean different things for different types. Columns without a use for them have
// the database's text order.
void DefinitionBuilder::putExtra(Record record, const Column& column, bool isNew) const {
    const ColumnLayout& layout = format_.column;
    if (column.type == ColumnType::Numeric) {
        put8(record, layout.precision, column.precision);
        put8(record, layout.scale, column.scale);
    } else if (column.type == ColumnType::Complex) {
        put32(record, layout.sortOrder, column.complexId);
    } else if (column.isText() || isNew) {
        const SortOrder order = column.isText() ? column.sortOrder : databaseOrder_;
        put16(record, layout.sortOrder, order.id);
        put8(record, layout.sortVersion, order.version);
    }
}

void DefinitionBuilder::addRealIndex(const RealIndex& index) {
    const IndexLayout& layout = format_.index;
    const auto place = old_.realIndex(index.rootPage);
    const Record record = place ? add(old_.real(*place)) : add(layout.realSize);
    if (!place) {
        put32(record, 0, treeMark);
    }
    for (size_t i = 0; i < indexes::maxColumns; ++i) {
        const Record entry =
            record.subspan(layout.realColumns + i * indexes::columnSize, indexes::columnSize);
        if (i >= index.columns.size()) {
            put16(entry, 0, columns::none);
            continue;
        }
        const uint8_t rest = place ? entry[2] & ~indexes::ascendingFlag : 0;
        put16(entry, 0, index.columns[i].column);
        put8(entry, 2, rest | (index.columns[i].ascending ? indexes::ascendingFlag : 0));
    }
    put32(record, layout.realUsageMap, index.ownedPages.packed());
    put32(record, layout.realRoot, index.rootPage);
    put8(record, layout.realFlags, place ? index.flags : index.flags | realIndexFlag);
}

void DefinitionBuilder::addLogicalIndex(const LogicalIndex& index) {
    std::optional<ByteView> old = old_.logical(index.number);
    const size_t start = format_.index.logicalNumber;
    if (old && (static_cast<IndexKind>(old->get8(start + indexes::logicalKind)) ==
                IndexKind::Foreign) != index.isForeign()) {
        old.reset();
    }
    const Record whole = old ? add(*old) : add(format_.index.logicalSize);
    const Record record = whole.subspan(start);
    if (!old) {
        const uint8_t cascade = index.isForeign() ? 0 : noCascade;
        put32(whole, 0, tableMark);
        put32(record, indexes::logicalRelatedIndex, noIndex);
        put8(record, indexes::logicalCascadeUpdate, cascade);
        put8(record, indexes::logicalCascadeDelete, cascade);
    }
    put32(record, 0, index.number);
    put32(record, indexes::logicalReal, index.realIndex);
    put8(record, indexes::logicalKind, static_cast<uint8_t>(index.kind));
    if (index.isForeign()) {
        const auto putBit = [&](size_t offset, uint8_t bit, bool set) {
            put8(record, offset, static_cast<uint8_t>((record[offset] & ~bit) | (set ? bit : 0)));
        };
        put8(record, indexes::logicalRelatedType, index.relatedType);
        put32(record, indexes::logicalRelatedIndex, index.relatedIndex);
        put32(record, indexes::logicalRelatedPage, index.relatedTablePage);
        putBit(indexes::logicalCascadeUpdate, indexes::cascadeFlag, index.cascadeUpdates);
        putBit(indexes::logicalCascadeDelete, indexes::cascadeFlag, index.cascadeDeletes);
        putBit(indexes::logicalCascadeDelete, indexes::setNullFlag, index.nullsOnDelete);
    }
}

// Entries that were there for columns deleted long ago stay. What stands behind the end mark, too.
void DefinitionBuilder::addMaps() {
    for (const auto& [number, record] : old_.maps()) {
        const auto place = table_.columnByNumber(number);
        if (place && table_.columns[*place].isLongValue()) {
            addMaps(table_.columns[*place]);
        } else if (place || !old_.column(number)) {
            put16(add(2), 0, number);
            add(record);
        }
    }
    for (const Column* column : columns_) {
        const bool wasThere =
            std::any_of(old_.maps().begin(), old_.maps().end(),
                        [&](const auto& entry) { return entry.first == column->number; });
        if (column->isLongValue() && !wasThere) {
            addMaps(*column);
        }
    }
    put16(add(2), 0, columns::none);
    if (old_.exists()) {
        add(old_.rest());
    } else {
        add(endSize);
    }
}

void DefinitionBuilder::addMaps(const Column& column) {
    if (!column.ownedPages && !column.freePages) {
        return;
    }
    const Record record = add(2 + definitions::mapsRecord);
    put16(record, 0, column.number);
    put32(record, 2, column.ownedPages.value_or(RowId{}).packed());
    put32(record, 6, column.freePages.value_or(RowId{}).packed());
}

void checkLimits(const TableDefinition& table, const DefinitionRecords& old) {
    if (table.columns.size() > columns::maxColumns || table.maxColumns > columns::maxColumns) {
        throw Error(TooManyFields, {}, {.table = table.name});
    }
    if (table.indexes.size() > std::max(mostIndexes, old.logicalIndexes())) {
        throw Error(TooManyIndexes, {table.name}, {.table = table.name});
    }
    const auto fail = [&](const std::wstring& what) {
        throw Error(InvalidArgument, {}, {.table = table.name, .detail = what});
    };
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        if (column.number >= table.maxColumns ||
            (i > 0 && column.number <= table.columns[i - 1].number)) {
            fail(L"the numbers of the columns do not rise");
        }
    }
    for (const RealIndex& index : table.realIndexes) {
        if (index.columns.empty() || index.columns.size() > indexes::maxColumns) {
            fail(L"an index has " + std::to_wstring(index.columns.size()) + L" columns");
        }
        for (const IndexColumn& column : index.columns) {
            if (!table.columnByNumber(column.column)) {
                fail(L"an index is over a column that is not there");
            }
        }
    }
    for (const LogicalIndex& index : table.indexes) {
        if (index.realIndex >= table.realIndexes.size()) {
            fail(L"index " + index.name + L" stands on none");
        }
    }
}

// As many pages as `size` bytes need.
void resizeChain(PageAllocator& allocator, std::vector<uint32_t>& chain, size_t size) {
    const size_t pageSize = allocator.format().pageSize;
    const size_t room = pageSize - definitions::nextPageHead;
    const size_t needed = size <= pageSize ? 1 : 1 + (size - pageSize + room - 1) / room;
    if (needed > definitions::mostPages) {
        throw Error(InvalidArgument, {}, {.detail = L"a table's definition is too long"});
    }
    while (chain.size() > needed) {
        allocator.free(chain.back());
        chain.pop_back();
    }
    while (chain.size() < needed) {
        chain.push_back(allocator.allocate());
    }
}

void writeChain(WriteTransaction& pages, const std::vector<uint32_t>& chain,
                std::span<const uint8_t> definition) {
    const Format& format = pages.format();
    for (size_t i = 0; i < chain.size(); ++i) {
        const size_t head = i == 0 ? 0 : definitions::nextPageHead;
        const size_t size = std::min(definition.size(), format.pageSize - head);
        const Record page = pages.write(chain[i]);
        std::copy_n(definition.begin(), size, page.begin() + static_cast<ptrdiff_t>(head));
        definition = definition.subspan(size);
        put8(page, 0, static_cast<uint8_t>(PageKind::TableDefinition));
        put8(page, 1, 1);
        put16(page, freeSpace, static_cast<uint16_t>(format.pageSize - head - size));
        put32(page, format.table.nextPage, i + 1 < chain.size() ? chain[i + 1] : 0);
    }
}

}  // namespace

void writeDefinition(PageAllocator& allocator, TableDefinition& table) {
    const Format& format = allocator.format();
    WriteTransaction& pages = allocator.pages();
    DefinitionRecords old(format);
    table.pages = old.readPages(pages, table.page);
    old.readRecords();
    checkLimits(table, old);
    const SortOrder order = readDatabaseHeader(pages).sortOrder;
    const std::vector<uint8_t> bytes = DefinitionBuilder(format, old, table, order).build();
    resizeChain(allocator, table.pages, bytes.size());
    writeChain(pages, table.pages, bytes);
    table.rowCount = readRowCount(pages, table);
    table.lastAutoNumber = readAutoNumber(pages, table);
    for (size_t i = 0; i < table.realIndexes.size(); ++i) {
        table.realIndexes[i].entryCount = readEntryCount(pages, table, i);
    }
}

uint32_t createDefinitionPage(PageAllocator& allocator) {
    const uint32_t number = allocator.allocate();
    const Record page = allocator.pages().write(number);
    put8(page, 0, static_cast<uint8_t>(PageKind::TableDefinition));
    put8(page, 1, 1);
    put16(page, freeSpace, static_cast<uint16_t>(page.size() - definitions::nextPageHead));
    return number;
}

void dropDefinition(PageAllocator& allocator, const TableDefinition& table) {
    DefinitionRecords old(allocator.format());
    for (const uint32_t page : old.readPages(allocator.pages(), table.page)) {
        allocator.free(page);
    }
}

}  // namespace sg::jet
