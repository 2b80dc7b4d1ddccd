#include "host/jet/compact/compact_catalog.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "host/jet/compact/compact_objects.h"
#include "host/jet/compact/compact_table.h"
#include "host/jet/schema/schema_columns.h"
#include "host/jet/schema/schema_relations.h"
#include "host/jet/schema/schema_tables.h"

namespace sg::jet::compaction {
namespace {

constexpr std::wstring_view queriesTable = L"MSysQueries";

// A table on its way.
struct TableItem {
    CatalogObject object;
    Table table;
    bool isNamed = true;  // by the catalog
};

// The engine's own tables for the kind of columns that is not kept.
bool isOfEngine(const CatalogObject& object) {
    constexpr std::wstring_view start = L"MSysComplex";
    return equalIgnoringCase(std::wstring_view(object.name).substr(0, start.size()), start);
}

// These, and one for each such column: "f_", 32 hexadecimal digits, "_" and the column's name.
bool isBehindComplex(const CatalogObject& object) {
    constexpr std::wstring_view start = L"f_";
    constexpr std::wstring_view digits = L"0123456789ABCDEFabcdef";
    constexpr size_t digitCount = 32;
    if ((object.flags & objectFlags::system) == 0) return false;
    const std::wstring_view name = object.name;
    return isOfEngine(object) ||
           (name.substr(0, start.size()) == start &&
            name.find_first_not_of(digits, start.size()) == start.size() + digitCount &&
            name[start.size() + digitCount] == L'_');
}

class DatabaseCopier {
  public:
    DatabaseCopier(const Source& source, Database& into, Run& run)
        : source_(source), into_(into), run_(run), objects_(source, into) {}

    void copy() {
        findTables();
        findUnnamedTables();
        run_.advance(0);
        for (const TableItem& item : tables_)
            copyTable(item);
        copyRelations();
        copyObjects();
        copyQueries();
    }

  private:
    void findTables();
    void findUnnamedTables();
    void tellHidden(const CatalogObject& object);
    std::wstring recoveredName();
    void take(TableItem item);

    void copyTable(const TableItem& item);
    std::optional<CatalogObject> makeTable(const TableItem& item, const TablePlan& plan);
    CatalogObject makeTable(CatalogObject object, bool isNamed, TableDefinition definition,
                            const std::vector<std::wstring>& dropped);

    void copySystemRows(std::wstring_view name,
                        const std::function<bool(std::vector<Value>&)>& change = {});
    void copyRelations();
    bool isEnforced(const Relation& relation) const;
    void dropRelation(const Relation& relation);
    void copyObjects();
    void copyQueries();

    const Source& source_;
    Database& into_;
    Run& run_;
    ObjectCopier objects_;
    std::vector<TableItem> tables_;
    std::vector<std::wstring> hidden_;         // tables that are not kept
    std::vector<std::wstring> lostRelations_;  // names
    int recovered_ = 0;
};

bool isAmong(const std::vector<std::wstring>& names, const std::wstring& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::wstring& one) { return equalIgnoringCase(one, name); });
}

// --- tables ---

void DatabaseCopier::take(TableItem item) {
    const TableDefinition& definition = item.table.definition();
    const auto indexes =
        std::count_if(definition.indexes.begin(), definition.indexes.end(),
                      [](const LogicalIndex& index) { return !index.isForeign(); });
    run_.expect(source_.tableRows(definition) * static_cast<uint64_t>(1 + indexes));
    tables_.push_back(std::move(item));
}

void DatabaseCopier::findTables() {
    run_.expect(source_.objects().size());
    std::set<uint32_t> seen;
    for (const CatalogObject& object : source_.objects()) {
        if (!object.isTable() || objects_.isBuiltIn(object)) continue;
        if (source_.format().isAce() && isBehindComplex(object)) {
            hidden_.push_back(object.name);
            if (!isOfEngine(object)) tellHidden(object);
            continue;
        }
        run_.guard(L"table " + object.name, [&] {
            if (!seen.insert(object.definitionPage()).second) {
                throwDamaged(L"another table has its definition", object.definitionPage());
            }
            take({object, source_.tableAt(object.definitionPage(), object.name)});
        });
    }
}

void DatabaseCopier::tellHidden(const CatalogObject& object) {
    run_.guard(L"table " + object.name, [&] {
        const Table table = source_.tableAt(object.definitionPage(), object.name);
        if (table.rowCount() == 0) return;
        run_.lose(L"table " + object.name + L": the values of a column that is not kept, " +
                  std::to_wstring(table.rowCount()) + L" rows");
    });
}

void DatabaseCopier::findUnnamedTables() {
    if (!run_.repairs()) return;
    for (const uint32_t page : source_.unnamedTables()) {
        CatalogObject object;
        object.id = static_cast<int32_t>(page);
        object.name = recoveredName();
        run_.lose(L"page " + std::to_wstring(page) +
                  L": a table that the catalog does not name is kept as " + object.name);
        take({object, source_.tableAt(page, object.name), false});
    }
}

std::wstring DatabaseCopier::recoveredName() {
    std::wstring name;
    const auto isTaken = [&] {
        return std::any_of(
            source_.objects().begin(), source_.objects().end(),
            [&](const CatalogObject& object) { return schema::sameName(object.name, name); });
    };
    do {
        name = L"Recovered_" + std::to_wstring(++recovered_);
    } while (isTaken());
    return name;
}

CatalogObject DatabaseCopier::makeTable(CatalogObject object, bool isNamed,
                                        TableDefinition definition,
                                        const std::vector<std::wstring>& dropped) {
    schema::SchemaChange change(into_);
    definition.name = object.name;
    schema::checkRowSize(definition, change.format());
    change.changing();
    schema::makeTablePages(change.allocator(), definition);
    if (isNamed) {
        objects_.addTable(object, definition.page, dropped);
    } else {
        objects_.addLost(object.name, ObjectType::Table, definition.page);
    }
    change.done();
    object.id = static_cast<int32_t>(definition.page);
    return object;
}

// A repair gives another name to a table whose own the catalog does not take.
std::optional<CatalogObject> DatabaseCopier::makeTable(const TableItem& item,
                                                       const TablePlan& plan) {
    std::optional<CatalogObject> made;
    const std::wstring told = L"table " + item.object.name;
    if (run_.guard(told, [&] {
            made = makeTable(item.object, item.isNamed, plan.definition, plan.dropped);
        })) {
        return made;
    }
    CatalogObject renamed = item.object;
    renamed.name = recoveredName();
    run_.guard(told, [&] {
        made = makeTable(renamed, item.isNamed, plan.definition, plan.dropped);
        run_.lose(told + L": it is kept as " + renamed.name);
    });
    return made;
}

void DatabaseCopier::copyTable(const TableItem& item) {
    const TableDefinition& from = item.table.definition();
    const TablePlan plan = planTable(source_, from, into_.header().sortOrder);
    const std::optional<CatalogObject> made = makeTable(item, plan);
    if (!made) return;
    const uint32_t page = made->definitionPage();
    const uint64_t rows = copyRows(source_, item.table, into_, page, plan.moves);
    copyCounters(source_, item.table, into_, page);
    copyIndexes(source_, from, into_, *made);
    if (made->isSystem()) return;
    ++run_.report().tables;
    run_.report().rows += rows;
}

// --- system tables ---

void DatabaseCopier::copySystemRows(std::wstring_view name,
                                    const std::function<bool(std::vector<Value>&)>& change) {
    run_.guard(name, [&] {
        const std::optional<Table> from = source_.systemTable(name);
        if (!from) return;
        const Table to = into_.table(name);
        std::vector<ColumnMove> moves;
        for (size_t i = 0; i < to.definition().columns.size(); ++i) {
            const auto place = from->definition().columnByName(to.definition().columns[i].name);
            if (place) moves.push_back({*place, i, true});
        }
        copyRows(source_, *from, into_, to.definition().page, moves, change);
    });
}

// --- relations ---

void DatabaseCopier::copyRelations() {
    copySystemRows(schema::relationsTable);
    for (const Relation& relation : into_.relations()) {
        if (isAmong(hidden_, relation.table) || isAmong(hidden_, relation.foreignTable)) {
            dropRelation(relation);
            continue;
        }
        if (!isEnforced(relation)) continue;
        const bool isMade = run_.guard(L"relation " + relation.name, [&] {
            schema::SchemaChange change(into_);
            schema::enforceRelation(change, relation);
            change.done();
        });
        if (!isMade) dropRelation(relation);
    }
}

// One with a table of another file is that file's affair.
bool DatabaseCopier::isEnforced(const Relation& relation) const {
    if ((relation.flags & (relationFlags::notEnforced | relationFlags::inherited)) != 0) {
        return false;
    }
    const auto isLinked = [&](const std::wstring& name) {
        return std::any_of(source_.objects().begin(), source_.objects().end(),
                           [&](const CatalogObject& object) {
                               return object.isLinked() && equalIgnoringCase(object.name, name);
                           });
    };
    return !isLinked(relation.table) && !isLinked(relation.foreignTable);
}

void DatabaseCopier::dropRelation(const Relation& relation) {
    lostRelations_.push_back(relation.name);
    schema::SystemTable rows(into_, schema::relationsTable);
    const size_t name = rows.column(L"szRelationship");
    rows.erase(rows.find([&](const RowCursor& row) {
        return equalIgnoringCase(schema::textAt(row, name), relation.name);
    }));
}

// --- other objects ---

void DatabaseCopier::copyObjects() {
    schema::SchemaChange change(into_);
    change.changing();
    std::vector<std::wstring> relations;  // with an object
    for (const CatalogObject& object : source_.objects()) {
        run_.advance();
        if (objects_.isBuiltIn(object)) {
            run_.guard(object.name, [&] { objects_.update(object); });
            continue;
        }
        if (object.isTable()) continue;
        if (object.type == ObjectType::Relation) {
            if (isAmong(lostRelations_, object.name)) continue;
            relations.push_back(object.name);
        }
        run_.guard(object.name, [&] { objects_.add(object); });
    }
    for (const Relation& relation : into_.relations()) {
        if (isAmong(relations, relation.name)) continue;
        run_.guard(L"relation " + relation.name,
                   [&] { objects_.addLost(relation.name, ObjectType::Relation); });
    }
    change.done();
    // Once the catalog is read again.
    schema::SchemaChange rights(into_);
    rights.changing();
    objects_.copyAccess();
    rights.done();
}

// Rows of queries that are not there mean nothing.
void DatabaseCopier::copyQueries() {
    const size_t object = into_.table(queriesTable).definition().columnByName(L"ObjectId").value();
    copySystemRows(queriesTable, [&](std::vector<Value>& row) {
        const int32_t* id = std::get_if<int32_t>(&row[object]);
        const auto made = id != nullptr ? objects_.newId(*id) : std::nullopt;
        if (!made) return false;
        row[object] = *made;
        return true;
    });
}

}  // namespace

void copyDatabase(const Source& source, Database& into, Run& run) {
    DatabaseCopier(source, into, run).copy();
}

}  // namespace sg::jet::compaction
