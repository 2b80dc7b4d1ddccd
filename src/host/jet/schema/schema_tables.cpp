#include "host/jet/schema/schema_tables.h"

#include <algorithm>

#include "host/jet/index/index_writer.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/pages/usage_map_editor.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema/schema_catalog.h"
#include "host/jet/schema/schema_columns.h"
#include "host/jet/schema/schema_indexes.h"

namespace sg::jet {
namespace schema {
namespace {

constexpr int noColumns = 3264;
constexpr int inRelation = 3281;

// The definition without a page, and its properties.
TableDefinition designed(const Database& database, const TableDesign& design, const Format& format,
                         Properties& properties) {
    if (design.columns.empty()) throw Error(noColumns, {}, {.table = design.name});
    TableDefinition table;
    table.name = design.name;
    setTableProperties(properties, design);
    for (const ColumnDesign& column : design.columns) {
        if (table.columnByName(column.name)) {
            throw Error(FieldDefinedTwice, {column.name}, {.table = design.name});
        }
        addDesignedColumn(table, column, database.header().sortOrder);
        setColumnProperties(properties, column);
    }
    checkRowSize(table, format);
    for (const IndexDesign& index : design.indexes)
        addDesignedIndex(table, index, format);
    return table;
}

void dropPages(PageAllocator& allocator, const TableDefinition& table) {
    for (const RealIndex& index : table.realIndexes)
        dropIndexPages(allocator, index);
    for (const Column& column : table.columns) {
        dropOwnedPages(allocator, table, column.ownedPages.value_or(RowId()),
                       column.freePages.value_or(RowId()));
    }
    dropOwnedPages(allocator, table, table.ownedPages, table.freePages);
    dropDefinition(allocator, table);
}

}  // namespace

void makeTablePages(PageAllocator& allocator, TableDefinition& table) {
    const auto isLongValue = [](const Column& column) { return column.isLongValue(); };
    const auto longValues =
        static_cast<size_t>(std::count_if(table.columns.begin(), table.columns.end(), isLongValue));
    table.page = createDefinitionPage(allocator);
    table.pages = {table.page};
    const std::vector<RowId> maps =
        createManyMaps(allocator, 2 + 2 * longValues + table.realIndexes.size());
    auto map = maps.begin();
    table.ownedPages = *map++;
    table.freePages = *map++;
    for (Column& column : table.columns) {
        if (!column.isLongValue()) continue;
        column.ownedPages = *map++;
        column.freePages = *map++;
    }
    for (RealIndex& index : table.realIndexes) {
        index.ownedPages = *map++;
        index.rootPage = createTree(allocator, table.page, index.ownedPages);
    }
    writeDefinition(allocator, table);
}

}  // namespace schema

using namespace schema;

void createTable(Database& database, const TableDesign& design) {
    SchemaChange change(database);
    checkName(design.name);
    requireFreeName(database, design.name);
    Properties properties;
    TableDefinition table = designed(database, design, change.format(), properties);

    change.changing();
    makeTablePages(change.allocator(), table);
    for (const ColumnDesign& column : design.columns) {
        if (column.autoNumber && column.type == ColumnType::Long) {
            startCounter(change.pages(), table, column, 0);
        }
    }
    addObject(database, {.id = static_cast<int32_t>(table.page),
                         .name = design.name,
                         .type = ObjectType::Table,
                         .fields = {propertiesField(properties, change.format())}});
    change.done();
}

void dropTable(Database& database, std::wstring_view name) {
    SchemaChange change(database);
    const CatalogObject object = [&] {
        try {
            return ownOrLinkedTable(database, name);
        } catch (const Error& error) {
            if (error.code() != InputTableNotFound) throw;
            throw Error(TableNotFound, {std::wstring(name)}, {.file = database.name()});
        }
    }();
    std::optional<TableDefinition> table;
    if (object.isTable()) table = change.definition(object);
    if (isRelated(database, object.name) ||
        (table && std::any_of(table->indexes.begin(), table->indexes.end(),
                              [](const LogicalIndex& index) { return index.isForeign(); }))) {
        throw Error(inRelation, {}, {.table = object.name});
    }

    change.changing();
    if (table) dropPages(change.allocator(), *table);
    removeObject(database, object);
    change.done();
}

void renameTable(Database& database, std::wstring_view name, std::wstring_view newName) {
    SchemaChange change(database);
    const CatalogObject object = ownOrLinkedTable(database, name);
    checkName(newName);
    requireFreeName(database, newName, object.id);

    change.changing();
    changeObject(database, object, {{L"Name", std::wstring(newName)}});
    renameInRelations(database, object.name, {}, newName);
    change.done();
}

}  // namespace sg::jet
