// Columns that become of another type.

#include <algorithm>

#include "base/text.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema/schema_catalog.h"
#include "host/jet/schema/schema_columns.h"

namespace sg::jet {
namespace schema {
namespace {

constexpr int invalidType = 3259;
constexpr int columnRelated = 3303;

bool hasColumn(const RealIndex& index, const Column& column) {
    return std::any_of(index.columns.begin(), index.columns.end(),
                       [&](const IndexColumn& one) { return one.column == column.number; });
}

IndexDesign designOf(const TableDefinition& table, const LogicalIndex& index) {
    const RealIndex& real = table.realOf(index);
    IndexDesign design;
    design.name = index.name;
    design.primary = index.isPrimary();
    design.unique = real.isUnique();
    design.ignoreNulls = real.ignoresNulls();
    design.required = real.isRequired();
    for (const IndexColumn& one : real.columns) {
        design.columns.push_back(
            {table.columns[*table.columnByNumber(one.column)].name, one.ascending});
    }
    return design;
}

std::vector<IndexDesign> indexesOver(const TableDefinition& table, const Column& column) {
    std::vector<IndexDesign> designs;
    for (const LogicalIndex& index : table.indexes) {
        if (!index.isForeign() && hasColumn(table.realOf(index), column)) {
            designs.push_back(designOf(table, index));
        }
    }
    return designs;
}

std::wstring freeName(const TableDefinition& table) {
    std::wstring name;
    for (int i = 0; name.empty() || table.columnByName(name); ++i)
        name = L"Altered" + std::to_wstring(i);
    return name;
}

// Gives the column at `to` what the rows have in the one at `from`, converted.
void copyValues(Database& database, const std::wstring& name, size_t from, size_t to) {
    std::vector<RowId> ids;
    for (RowCursor rows = database.table(name).scan(); rows.next();)
        ids.push_back(rows.id());
    TableWriter& writer = database.writer(name);
    std::vector<bool> changed(writer.definition().columns.size(), false);
    changed[to] = true;
    std::vector<Value> row;
    for (const RowId id : ids) {
        row.assign(changed.size(), {});
        {
            RowCursor rows(writer.table());
            if (!rows.seek(id) || rows.isNull(from)) continue;
            rows.value(from, row[to]);
        }
        writer.update(id, row, changed);
    }
}

void setOrdinal(Database& database, const std::wstring& name, const std::wstring& column,
                uint16_t ordinal) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    TableDefinition table = change.definition(object);
    table.columns[requireColumn(table, column)].ordinal = ordinal;
    change.changing();
    writeDefinition(change.allocator(), table);
    change.done();
}

// What is kept with the column and the design says nothing of.
void keepProperties(Database& database, const std::wstring& table, const ColumnDesign& design,
                    const Properties& before) {
    const bool isText = design.type == ColumnType::Text || design.type == ColumnType::Memo;
    for (const PropertyBlock& block : before.blocks()) {
        if (!equalIgnoringCase(block.owner, design.name)) continue;
        for (const Property& property : block.properties) {
            const auto is = [&](const wchar_t* name) {
                return equalIgnoringCase(property.name, name);
            };
            const bool isSet = is(L"Required") ||
                               (is(L"DefaultValue") && !design.defaultValue.empty()) ||
                               (is(L"AllowZeroLength") && !isText);
            if (!isSet) setProperty(database, table, design.name, property);
        }
    }
}

// The column stays where it is; only what is kept with it changes.
void setOptions(Database& database, const CatalogObject& object, const ColumnDesign& design) {
    const auto set = [&](const wchar_t* name, ColumnType type, Value value) {
        setProperty(database, object.name, design.name, {name, type, true, std::move(value)});
    };
    set(L"Required", ColumnType::Boolean, design.required);
    if (!design.defaultValue.empty()) {
        set(L"DefaultValue", ColumnType::Memo, design.defaultValue);
    }
}

// A new column takes the old one's place.
void replaceColumn(Database& database, const CatalogObject& object, const TableDefinition& before,
                   size_t place, ColumnDesign design) {
    const std::wstring name = before.columns[place].name;
    const Properties properties = database.properties(object);
    const std::vector<IndexDesign> indexes = indexesOver(before, before.columns[place]);
    for (const IndexDesign& index : indexes)
        dropIndex(database, object.name, index.name);
    design.name = freeName(before);
    addColumn(database, object.name, design);
    if (!design.autoNumber) {
        copyValues(database, object.name, place, before.columns.size());
    }
    dropColumn(database, object.name, name);
    renameColumn(database, object.name, design.name, name);
    setOrdinal(database, object.name, name, before.columns[place].ordinal);
    design.name = name;
    keepProperties(database, object.name, design, properties);
    for (const IndexDesign& index : indexes)
        createIndex(database, object.name, index);
}

bool isStoredAlike(const Column& a, const Column& b) {
    return a.type == b.type && a.length == b.length && a.flags == b.flags &&
           a.precision == b.precision && a.scale == b.scale;
}

}  // namespace
}  // namespace schema

using namespace schema;

void alterColumn(Database& database, std::wstring_view name, const ColumnDesign& design) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    const TableDefinition before = change.definition(object);
    const size_t place = requireColumn(before, design.name);
    const Column& column = before.columns[place];
    TableDefinition probe;
    const Column wanted = addDesignedColumn(probe, design, database.header().sortOrder);
    const bool isAlike = isStoredAlike(column, wanted);
    if (!isAlike && isRelated(database, object.name, column.name)) {
        throw Error(columnRelated, {}, {.table = object.name});
    }
    if (design.autoNumber && !column.isAutoNumber() && before.rowCount > 0) {
        throw Error(invalidType, {}, {.table = object.name});
    }

    change.changing();
    if (isAlike) {
        setOptions(database, object, design);
    } else {
        replaceColumn(database, object, before, place, design);
    }
    if (design.autoNumber && design.type == ColumnType::Long) {
        startCounter(change.pages(), change.definition(object), design, 0);
    }
    change.done();
}

}  // namespace sg::jet
