#include "host/jet/schema/schema_columns.h"

#include <algorithm>
#include <random>

#include "base/text.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/pages/long_value_store.h"
#include "host/jet/pages/row_encoder.h"
#include "host/jet/pages/row_store.h"
#include "host/jet/pages/usage_map.h"
#include "host/jet/pages/usage_map_editor.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema/schema_catalog.h"
#include "host/jet/values/value_codec.h"

namespace sg::jet {
namespace schema {
namespace {

constexpr int secondCounter = 3090;
constexpr int invalidType = 3259;
constexpr int noColumns = 3264;
constexpr int columnIndexed = 3280;
constexpr int columnRelated = 3303;
constexpr int sizeTooLong = 3382;

constexpr uint16_t longestText = 255;    // characters
constexpr uint16_t longestBinary = 510;  // bytes
constexpr uint8_t mostDigits = 28;
constexpr size_t mapsAtOnce = 50;

// Bytes that are given as characters or bytes, 0 for as many as there can be by default.
uint16_t givenSize(const ColumnDesign& design) {
    const bool isText = design.type == ColumnType::Text;
    if (design.size > (isText ? longestText : longestBinary)) {
        throw Error(sizeTooLong, {design.name});
    }
    const uint16_t units = design.size == 0 ? uint16_t(255) : design.size;
    return isText ? uint16_t(units * 2) : units;
}

bool isCounter(const Column& column) {
    return column.type == ColumnType::Long && (column.flags & columns::autoNumberFlag) != 0;
}

// The number of the row that `before` others are before, modulo 2^32.
uint32_t numberOf(const ColumnDesign& design, uint32_t before) {
    return static_cast<uint32_t>(design.firstNumber) +
           before * static_cast<uint32_t>(design.numberStep);
}

void setNumber(Column& column, const ColumnDesign& design) {
    if (design.precision == 0 || design.precision > mostDigits || design.scale > design.precision) {
        throw Error(InvalidArgument, {}, {.detail = L"precision and scale of " + design.name});
    }
    column.precision = design.precision;
    column.scale = design.scale;
}

// What the design tells of the column by itself. Numbers with a scale stand among the variable
// columns in the files of other programs, all other numbers among the fixed ones.
Column columnOf(const ColumnDesign& design, SortOrder order) {
    const bool isShort = design.type == ColumnType::Text || design.type == ColumnType::Binary;
    Column column;
    column.name = design.name;
    column.type = design.type;
    column.length = isShort ? givenSize(design) : sizeOf(design.type);
    column.flags = columns::updatableFlag;
    const bool isFixed =
        isShort ? design.fixedLength : column.length != 0 && design.type != ColumnType::Numeric;
    if (isFixed) column.flags |= columns::fixedFlag;
    if (column.isText()) {
        column.sortOrder = order;
        if (design.compressed && !isFixed) column.extraFlags |= columns::compressedFlag;
    }
    if (design.type == ColumnType::Numeric) setNumber(column, design);
    if (design.type == ColumnType::Memo && design.hyperlink) {
        column.flags |= columns::hyperlinkFlag;
    }
    if (design.autoNumber) {
        if (design.type != ColumnType::Long && design.type != ColumnType::Guid) {
            throw Error(invalidType);
        }
        column.flags |=
            design.type == ColumnType::Long ? columns::autoNumberFlag : columns::autoGuidFlag;
    }
    return column;
}

bool takesFixedRoom(const Column& column) {
    return column.isFixed() && column.type != ColumnType::Boolean;
}

size_t endOfFixed(const TableDefinition& table) {
    size_t end = 0;
    for (const Column& column : table.columns) {
        if (takesFixedRoom(column)) {
            end = std::max(end, size_t(column.fixedOffset) + column.length);
        }
    }
    return end;
}

void setText(Properties& properties, std::wstring_view owner, const wchar_t* name, ColumnType type,
             const std::wstring& value) {
    if (!value.empty()) properties.set(owner, {name, type, true, value});
}

}  // namespace

uint16_t sizeOf(ColumnType type) {
    switch (type) {
        case ColumnType::Ole:
        case ColumnType::Memo:
            return 0;
        case ColumnType::Complex:
        case ColumnType::BigInteger:
        case ColumnType::DateTimeExtended:
            throw Error(invalidType);
        default:
            break;
    }
    const std::optional<uint16_t> size = valueSize(type);
    if (!size) throw Error(invalidType);
    return *size;
}

Column& addDesignedColumn(TableDefinition& table, const ColumnDesign& design, SortOrder order) {
    checkName(design.name);
    Column column = columnOf(design, order);
    if (isCounter(column) && design.numberStep == 0) {
        throw Error(InvalidArgument, {}, {.detail = L"the step of counter " + design.name});
    }
    if (isCounter(column) && std::any_of(table.columns.begin(), table.columns.end(), isCounter)) {
        throw Error(secondCounter, {}, {.table = table.name});
    }
    column.number = table.maxColumns;
    for (const Column& other : table.columns) {
        column.number = std::max(column.number, uint16_t(other.number + 1));
        column.ordinal = std::max(column.ordinal, uint16_t(other.ordinal + 1));
    }
    if (column.number >= columns::maxColumns) {
        throw Error(TooManyFields, {}, {.table = table.name});
    }
    table.maxColumns = column.number + 1;
    column.variableIndex = table.variableColumns;
    if (!column.isFixed()) {
        ++table.variableColumns;
    } else if (takesFixedRoom(column)) {
        column.fixedOffset = static_cast<uint16_t>(endOfFixed(table));
    }
    table.columns.push_back(std::move(column));
    return table.columns.back();
}

void startCounter(WriteTransaction& pages, const TableDefinition& table, const ColumnDesign& design,
                  uint32_t rows) {
    const auto step = static_cast<uint32_t>(design.numberStep);
    writeAutoNumber(pages, table, numberOf(design, rows) - step);
    writeAutoNumberStep(pages, table, step);
}

void checkRowSize(const TableDefinition& table, const Format& format) {
    const size_t offsets = table.variableColumns == 0 ? 0 : table.variableColumns + size_t(2);
    const size_t size = format.row.countSize * (1 + offsets) + endOfFixed(table) +
                        (table.maxColumns + size_t(7)) / 8;
    if (size > format.row.maxSize) throw Error(RecordTooLarge, {}, {.table = table.name});
}

void setColumnProperties(Properties& properties, const ColumnDesign& design) {
    const std::wstring& owner = design.name;
    if (!design.autoNumber) {
        properties.set(owner, {L"Required", ColumnType::Boolean, true, design.required});
    }
    if (design.type == ColumnType::Text || design.type == ColumnType::Memo) {
        properties.set(owner,
                       {L"AllowZeroLength", ColumnType::Boolean, true, design.allowZeroLength});
    }
    setText(properties, owner, L"DefaultValue", ColumnType::Memo, design.defaultValue);
    setText(properties, owner, L"ValidationRule", ColumnType::Memo, design.validationRule);
    setText(properties, owner, L"ValidationText", ColumnType::Text, design.validationText);
    setText(properties, owner, L"Description", ColumnType::Text, design.description);
    setText(properties, owner, L"Caption", ColumnType::Memo, design.caption);
}

void setTableProperties(Properties& properties, const TableDesign& design) {
    setText(properties, {}, L"ValidationRule", ColumnType::Memo, design.validationRule);
    setText(properties, {}, L"ValidationText", ColumnType::Text, design.validationText);
    setText(properties, {}, L"Description", ColumnType::Text, design.description);
}

std::vector<RowId> createManyMaps(PageAllocator& allocator, size_t count) {
    std::vector<RowId> maps;
    while (maps.size() < count) {
        const auto more = createMaps(allocator, std::min(mapsAtOnce, count - maps.size()));
        maps.insert(maps.end(), more.begin(), more.end());
    }
    return maps;
}

void dropOwnedPages(PageAllocator& allocator, const TableDefinition& table, RowId owned,
                    RowId free) {
    if (owned.page != 0) {
        std::vector<uint32_t> pages;
        {
            const UsageMap map = UsageMap::read(allocator.pages(), owned);
            for (auto page = map.next(0); page && *page < allocator.pages().pageCount();
                 page = map.next(*page + 1)) {
                const PageRef bytes = allocator.pages().read(*page);
                const uint32_t owner = bytes->get32(allocator.format().dataPage.owner);
                if (bytes->get8(0) == static_cast<uint8_t>(PageKind::Data) &&
                    (owner == table.page || owner == pages::longValueOwner)) {
                    pages.push_back(*page);
                }
            }
        }
        for (const uint32_t page : pages)
            allocator.free(page);
        dropMap(allocator, owned);
    }
    if (free.page != 0) dropMap(allocator, free);
}

namespace {

// Every row of a table, whatever is done to them meanwhile.
std::vector<RowId> allRows(const Table& table) {
    std::vector<RowId> ids;
    for (RowCursor rows = table.scan(); rows.next();)
        ids.push_back(rows.id());
    return ids;
}

Value randomGuid() {
    static thread_local std::random_device source;
    Guid guid;
    for (uint8_t& byte : guid.bytes)
        byte = static_cast<uint8_t>(source());
    guid.bytes[7] = static_cast<uint8_t>((guid.bytes[7] & 0x0f) | 0x40);
    guid.bytes[8] = static_cast<uint8_t>((guid.bytes[8] & 0x3f) | 0x80);
    return guid;
}

// Gives every row a value of the counter or automatic Guid that was added behind the columns of
// `before`, and answers how many rows there are. The rest of a row's bytes stays as it is, and
// neither rules nor indexes see it.
uint32_t numberRows(SchemaChange& change, const TableDefinition& before,
                    const TableDefinition& after, const ColumnDesign& design) {
    const Format& format = change.format();
    const Column& added = after.columns.back();
    const Table old = change.table(before);
    RowStore store(change.allocator(), after.page, after.ownedPages, after.freePages);
    std::vector<RowPart> parts(after.columns.size());
    Bytes row;
    uint32_t count = 0;
    for (const RowId id : allRows(old)) {
        {
            RowCursor rows(old);
            if (!rows.seek(id)) throwDamaged(L"a row has gone", id.page);
            for (size_t i = 0; i < before.columns.size(); ++i) {
                const bool isBoolean = before.columns[i].type == ColumnType::Boolean;
                parts[i].isNull = isBoolean ? rows.value(i) != Value(true) : rows.isNull(i);
                parts[i].bytes.clear();
                if (parts[i].isNull || isBoolean) continue;
                const ByteView bytes = rows.row().bytes(i);
                parts[i].bytes.assign(bytes.begin(), bytes.end());
            }
        }
        const Value value = added.type == ColumnType::Guid
                                ? randomGuid()
                                : Value(static_cast<int32_t>(numberOf(design, count++)));
        parts.back().isNull = false;
        encodeValue(added, value, format, parts.back().bytes);
        encodeRow(after, format, parts, row);
        store.update(id, {row.data(), row.size()});
    }
    return count;
}

// Takes the long values of a column that goes.
void dropLongValues(SchemaChange& change, const TableDefinition& table, size_t place) {
    const Column& column = table.columns[place];
    if (!column.isLongValue()) return;
    if (column.ownedPages && column.ownedPages->page != 0) {
        dropOwnedPages(change.allocator(), table, *column.ownedPages,
                       column.freePages.value_or(RowId()));
        return;
    }
    // They are on the table's pages, among the other columns' values.
    const Table rows = change.table(table);
    for (const RowId id : allRows(rows)) {
        Bytes header;
        {
            RowCursor row(rows);
            if (!row.seek(id) || row.isNull(place)) continue;
            const ByteView bytes = row.row().bytes(place);
            header.assign(bytes.begin(), bytes.end());
        }
        if (!header.empty()) {
            eraseLongValue(change.allocator(), table, column, {header.data(), header.size()});
        }
    }
}

void checkCanBeDropped(const SchemaChange& change, const TableDefinition& table, size_t place) {
    const Column& column = table.columns[place];
    for (const RealIndex& index : table.realIndexes) {
        if (std::any_of(index.columns.begin(), index.columns.end(),
                        [&](const IndexColumn& one) { return one.column == column.number; })) {
            throw Error(columnIndexed, {}, {.table = table.name});
        }
    }
    if (isRelated(change.database(), table.name, column.name)) {
        throw Error(columnRelated, {}, {.table = table.name});
    }
    if (table.columns.size() == 1) throw Error(noColumns, {}, {.table = table.name});
}

}  // namespace
}  // namespace schema

using namespace schema;

void addColumn(Database& database, std::wstring_view name, const ColumnDesign& design) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    const TableDefinition before = change.definition(object);
    if (before.columnByName(design.name)) {
        throw Error(FieldExists, {object.name, design.name});
    }
    TableDefinition table = before;
    const bool isLongValue =
        addDesignedColumn(table, design, database.header().sortOrder).isLongValue();
    checkRowSize(table, change.format());
    Properties properties = database.properties(object);
    setColumnProperties(properties, design);

    change.changing();
    if (isLongValue) {
        table.columns.back().ownedPages = createMap(change.allocator(), table.ownedPages);
        table.columns.back().freePages = createMap(change.allocator(), table.ownedPages);
    }
    const uint32_t rows = design.autoNumber ? numberRows(change, before, table, design) : 0;
    writeDefinition(change.allocator(), table);
    if (isCounter(table.columns.back())) startCounter(change.pages(), table, design, rows);
    changeObject(database, object, {propertiesField(properties, change.format())});
    change.done();
}

void dropColumn(Database& database, std::wstring_view name, std::wstring_view column) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    TableDefinition table = change.definition(object);
    const size_t place = requireColumn(table, column);
    checkCanBeDropped(change, table, place);
    Properties properties = database.properties(object);
    properties.removeOwner(column);

    change.changing();
    dropLongValues(change, table, place);
    table.columns.erase(table.columns.begin() + static_cast<std::ptrdiff_t>(place));
    writeDefinition(change.allocator(), table);
    changeObject(database, object, {propertiesField(properties, change.format())});
    change.done();
}

void renameColumn(Database& database, std::wstring_view name, std::wstring_view column,
                  std::wstring_view newName) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    TableDefinition table = change.definition(object);
    const size_t place = requireColumn(table, column);
    checkName(newName);
    const auto taken = table.columnByName(newName);
    if (taken && taken != place) {
        throw Error(FieldExists, {object.name, std::wstring(newName)});
    }
    Properties properties = database.properties(object);
    properties.renameOwner(column, newName);

    change.changing();
    table.columns[place].name = newName;
    writeDefinition(change.allocator(), table);
    renameInRelations(database, object.name, column, newName);
    changeObject(database, object, {propertiesField(properties, change.format())});
    change.done();
}

}  // namespace sg::jet
