#include "host/jet/database/new_catalog.h"

#include <algorithm>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "host/jet/catalog/catalog.h"
#include "host/jet/format/error.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_writer.h"
#include "host/jet/pages/database_header.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/pages/row_encoder.h"
#include "host/jet/pages/row_store.h"
#include "host/jet/pages/usage_map_editor.h"
#include "host/jet/values/value_codec.h"

// The tables are those of a database that the engines make when no program adds anything of its
// own, down to the order of their pages. See docs/formats/jet.md, "The catalog".
namespace sg::jet {
namespace {

constexpr uint16_t mostBytes = 510;
constexpr uint8_t systemFlag = columns::replicationFlag;
constexpr uint8_t accountFlag = 0x20;

// --- the tables ---

struct ColumnPlan {
    const wchar_t* name;
    ColumnType type;
    uint16_t length = 0;
    uint8_t extraFlag = 0;
};

struct IndexPlan {
    const wchar_t* name;
    std::vector<uint16_t> columns;
    uint8_t flags = 0;
    IndexKind kind = IndexKind::Normal;
};

// Columns by number and indexes by the number of their trees.
struct TablePlan {
    const wchar_t* name;
    std::vector<ColumnPlan> columns;
    std::vector<IndexPlan> indexes;
};

TablePlan objectsPlan() {
    using enum ColumnType;
    return {L"MSysObjects",
            {{L"Id", Long, 4},
             {L"ParentId", Long, 4},
             {L"Name", Text, mostBytes},
             {L"Type", Integer, 2},
             {L"DateCreate", ColumnType::Date, 8},
             {L"DateUpdate", ColumnType::Date, 8},
             {L"Owner", Binary, mostBytes, accountFlag},
             {L"Flags", Long, 4},
             {L"Database", Memo},
             {L"Connect", Memo},
             {L"ForeignName", Text, mostBytes},
             {L"RmtInfoShort", Binary, mostBytes},
             {L"RmtInfoLong", Ole},
             {L"Lv", Ole},
             {L"LvProp", Ole},
             {L"LvModule", Ole},
             {L"LvExtra", Ole}},
            {{L"ParentIdName", {1, 2}, indexes::uniqueFlag},
             {L"Id", {0}, indexes::uniqueFlag, IndexKind::Primary}}};
}

TablePlan accessPlan() {
    using enum ColumnType;
    return {L"MSysACEs",
            {{L"ObjectId", Long, 4},
             {L"SID", Binary, mostBytes, accountFlag},
             {L"ACM", Long, 4},
             {L"FInheritable", Boolean, 1}},
            {{L"ObjectId", {0}, indexes::requiredFlag}}};
}

TablePlan queriesPlan() {
    using enum ColumnType;
    return {L"MSysQueries",
            {{L"ObjectId", Long, 4},
             {L"Attribute", Byte, 1},
             {L"Order", Binary, mostBytes},
             {L"Name1", Text, mostBytes},
             {L"Name2", Text, mostBytes},
             {L"Expression", Memo},
             {L"Flag", Integer, 2},
             {L"LvExtra", Long, 4}},
            {{L"ObjectIdAttribute", {0, 1, 2}, indexes::uniqueFlag, IndexKind::Primary}}};
}

TablePlan relationshipsPlan() {
    using enum ColumnType;
    return {L"MSysRelationships",
            {{L"szRelationship", Text, mostBytes},
             {L"grbit", Long, 4},
             {L"ccolumn", Long, 4},
             {L"icolumn", Long, 4},
             {L"szObject", Text, mostBytes},
             {L"szColumn", Text, mostBytes},
             {L"szReferencedObject", Text, mostBytes},
             {L"szReferencedColumn", Text, mostBytes}},
            {{L"szRelationship", {0}, indexes::ignoreNullsFlag},
             {L"szObject", {4}, indexes::ignoreNullsFlag},
             {L"szReferencedObject", {6}, indexes::ignoreNullsFlag}}};
}

// --- their rows ---

constexpr int32_t root = 0x0F000000;
constexpr int32_t tables = 0x0F000001;
constexpr int32_t databases = 0x0F000002;
constexpr int32_t relationships = 0x0F000003;
constexpr int32_t database = 0x10000000;

// Accounts that are the same in every file, as the numbers that their bytes are, first byte first.
enum class Account : uint16_t {
    Engine = 0x0203,
    Creator = 0x0204,  // whoever makes an object
    Users = 0x0201,    // the group that all users are in
    Admin = 0x0301,    // the user that one is who has not said another name
};

// Rights to an object, as in MSysACEs.
constexpr int32_t administer = 0x60000;   // read and change its rights
constexpr int32_t ownerRights = 0xE0000;  // the same, and give it another owner
constexpr int32_t readTable = 0x14;       // read the rows and the design
constexpr int32_t makeObjects = 0x1;      // in a container
constexpr int32_t useDatabase = 0xE;      // open it, also exclusively
constexpr int32_t creatorRights = 0xF00FE;
constexpr int32_t allOfTables = 0xFFEFF;
constexpr int32_t allOfRelationships = 0xFFFFF;

struct ObjectRow {
    int32_t id;
    int32_t parent;
    const wchar_t* name;
    ObjectType type;
    Account owner = Account::Engine;
};

struct AccessRow {
    int32_t object;
    Account account;
    int32_t rights;
    bool isInherited = false;
};

// The definitions' pages: MSysObjects is the first.
constexpr int32_t pageOf(int32_t place) {
    return static_cast<int32_t>(pages::catalog) + place;
}

constexpr ObjectRow objectRows[] = {
    {tables, root, L"Tables", ObjectType::Container},
    {databases, root, L"Databases", ObjectType::Container},
    {relationships, root, L"Relationships", ObjectType::Container},
    {database, databases, L"MSysDb", ObjectType::Database, Account::Admin},
    {pageOf(0), tables, L"MSysObjects", ObjectType::Table},
    {pageOf(1), tables, L"MSysACEs", ObjectType::Table},
    {pageOf(2), tables, L"MSysQueries", ObjectType::Table},
    {pageOf(3), tables, L"MSysRelationships", ObjectType::Table},
};

// Everybody is Admin, and in Users, until somebody sets up a workgroup.
constexpr AccessRow accessRows[] = {
    {pageOf(0), Account::Admin, administer},
    {pageOf(1), Account::Admin, administer},
    {pageOf(2), Account::Admin, administer},
    {pageOf(3), Account::Admin, ownerRights},
    {tables, Account::Creator, creatorRights, true},
    {tables, Account::Admin, administer | makeObjects},
    {relationships, Account::Creator, creatorRights, true},
    {relationships, Account::Admin, administer | makeObjects},
    {databases, Account::Admin, administer},
    {database, Account::Admin, administer | useDatabase},
    {database, Account::Users, useDatabase},
    {pageOf(2), Account::Users, readTable},
    {pageOf(3), Account::Users, readTable},
    {pageOf(0), Account::Users, readTable},
    {tables, Account::Users, allOfTables, true},
    {relationships, Account::Users, allOfRelationships, true},
};

// --- writing them ---

TableDefinition definitionOf(const TablePlan& plan, SortOrder order) {
    TableDefinition table;
    table.name = plan.name;
    table.isSystem = true;
    table.maxColumns = static_cast<uint16_t>(plan.columns.size());
    uint16_t fixedOffset = 0;
    for (const ColumnPlan& planned : plan.columns) {
        Column column;
        column.name = planned.name;
        column.type = planned.type;
        column.number = static_cast<uint16_t>(table.columns.size());
        column.length = planned.length;
        column.variableIndex = table.variableColumns;
        column.flags = columns::updatableFlag | systemFlag | planned.extraFlag;
        if (column.isText()) column.sortOrder = order;
        if (column.type == ColumnType::Boolean) {
            column.flags |= columns::fixedFlag;
        } else if (planned.length != 0 && planned.length != mostBytes) {
            column.flags |= columns::fixedFlag;
            column.fixedOffset = fixedOffset;
            fixedOffset = static_cast<uint16_t>(fixedOffset + planned.length);
        } else {
            ++table.variableColumns;
        }
        table.columns.push_back(std::move(column));
    }
    for (const IndexPlan& planned : plan.indexes) {
        RealIndex index;
        for (const uint16_t column : planned.columns) {
            index.columns.push_back({column, true});
        }
        index.flags = planned.flags;
        const auto number = static_cast<uint32_t>(table.realIndexes.size());
        table.realIndexes.push_back(std::move(index));
        table.indexes.push_back({planned.name, number, number, planned.kind});
    }
    std::sort(table.indexes.begin(), table.indexes.end(),
              [](const LogicalIndex& a, const LogicalIndex& b) { return a.name < b.name; });
    return table;
}

// Hands a table its maps: of its pages, of its long values, and of its indexes.
void takeMaps(TableDefinition& table, std::span<const RowId>& maps) {
    const auto take = [&] {
        const RowId map = maps.front();
        maps = maps.subspan(1);
        return map;
    };
    table.ownedPages = take();
    table.freePages = take();
    for (Column& column : table.columns) {
        if (column.isLongValue()) {
            column.ownedPages = take();
            column.freePages = take();
        }
    }
    for (RealIndex& index : table.realIndexes) {
        index.ownedPages = take();
    }
}

size_t mapCount(const TableDefinition& table) {
    const auto longValues = std::count_if(table.columns.begin(), table.columns.end(),
                                          [](const Column& c) { return c.isLongValue(); });
    return 2 + 2 * static_cast<size_t>(longValues) + table.realIndexes.size();
}

using Row = std::vector<Value>;

std::vector<RowId> insertRows(PageAllocator& allocator, TableDefinition& table,
                              const std::vector<Row>& rows) {
    RowStore store(allocator, table.page, table.ownedPages, table.freePages);
    std::vector<RowId> ids;
    std::vector<RowPart> parts(table.columns.size());
    Bytes bytes;
    for (const Row& row : rows) {
        for (size_t i = 0; i < parts.size(); ++i) {
            const Column& column = table.columns[i];
            const bool isFalse = column.type == ColumnType::Boolean && row[i] != Value(true);
            parts[i].isNull = isNull(row[i]) || isFalse;
            if (!parts[i].isNull) {
                encodeValue(column, row[i], allocator.format(), parts[i].bytes);
            }
        }
        encodeRow(table, allocator.format(), parts, bytes);
        ids.push_back(store.insert(ByteView(bytes)));
    }
    table.rowCount = static_cast<uint32_t>(rows.size());
    return ids;
}

void fillIndex(PageAllocator& allocator, const TableDefinition& table, RealIndex& index,
               const std::vector<Row>& rows, const std::vector<RowId>& ids) {
    const KeyEncoder encoder(allocator.format(), table, index);
    encoder.requireUsable();
    std::vector<IndexEntry> entries(rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        std::vector<Value> values;
        for (const size_t place : encoder.places()) {
            values.push_back(rows[i][place]);
        }
        encoder.encode(values, entries[i].key);
        entries[i].row = ids[i];
    }
    std::sort(entries.begin(), entries.end(), [](const IndexEntry& a, const IndexEntry& b) {
        return std::tie(a.key, a.row) < std::tie(b.key, b.row);
    });
    for (size_t i = 0; i < entries.size(); ++i) {
        index.entryCount += i == 0 || entries[i].key != entries[i - 1].key ? 1 : 0;
    }
    auto next = entries.begin();
    buildTree(allocator, index, table.page, [&](IndexEntry& entry) {
        if (next == entries.end()) return false;
        entry = *next++;
        return true;
    });
}

// An account's identifier as this file has it.
Value accountValue(Account account, ByteView databasePage, const Format& format) {
    const auto number = static_cast<uint16_t>(account);
    Bytes bytes{static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
    maskAccount(bytes, databasePage, format);
    return bytes;
}

std::vector<Row> rowsOfObjects(size_t columnCount, ByteView databasePage, const Format& format,
                               Date created) {
    std::vector<Row> rows;
    for (const ObjectRow& object : objectRows) {
        Row row{object.id,
                object.parent,
                std::wstring(object.name),
                static_cast<int16_t>(object.type),
                created,
                created,
                accountValue(object.owner, databasePage, format),
                static_cast<int32_t>(objectFlags::system)};
        row.resize(columnCount);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<Row> rowsOfAccess(ByteView databasePage, const Format& format) {
    std::vector<Row> rows;
    for (const AccessRow& access : accessRows) {
        rows.push_back({access.object, accountValue(access.account, databasePage, format),
                        access.rights, access.isInherited});
    }
    return rows;
}

}  // namespace

void writeNewCatalog(PageAllocator& allocator, ByteView databasePage, SortOrder order,
                     Date created) {
    std::vector<TableDefinition> all;
    size_t maps = 0;
    for (const TablePlan& plan :
         {objectsPlan(), accessPlan(), queriesPlan(), relationshipsPlan()}) {
        all.push_back(definitionOf(plan, order));
        all.back().page = createDefinitionPage(allocator);
        if (all.back().page !=
            static_cast<uint32_t>(pageOf(static_cast<int32_t>(all.size()) - 1))) {
            throwDamaged(L"a new file has pages already", all.back().page);
        }
        maps += mapCount(all.back());
    }
    const std::vector<RowId> records = createMaps(allocator, maps);
    std::span<const RowId> rest(records);
    for (TableDefinition& table : all) {
        takeMaps(table, rest);
    }
    for (TableDefinition& table : all) {
        for (RealIndex& index : table.realIndexes) {
            index.rootPage = createTree(allocator, table.page, index.ownedPages);
        }
    }
    const std::vector<Row> rows[] = {
        rowsOfObjects(all[0].columns.size(), databasePage, allocator.format(), created),
        rowsOfAccess(databasePage, allocator.format()),
        {},
        {},
    };
    for (size_t i = 0; i < all.size(); ++i) {
        const std::vector<RowId> ids = insertRows(allocator, all[i], rows[i]);
        for (RealIndex& index : all[i].realIndexes) {
            fillIndex(allocator, all[i], index, rows[i], ids);
        }
        writeDefinition(allocator, all[i]);
    }
}

}  // namespace sg::jet
