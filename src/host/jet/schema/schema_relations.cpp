#include "host/jet/schema/schema_relations.h"

#include <algorithm>
#include <map>

#include "base/text.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema/schema_catalog.h"
#include "host/jet/schema/schema_indexes.h"

// An enforced relation is two logical indexes that name each other: one on a unique index of the
// table that is referred to, one on an index of the table that refers. Programs name the first so
// that nobody asks for it, and the second as the relation.
namespace sg::jet {
namespace schema {
namespace {

constexpr int relationWithItself = 3206;
constexpr int noColumns = 3366;
constexpr int differentColumns = 3368;
constexpr int notUnique = 3374;
constexpr int invalidColumn = 3409;

constexpr uint8_t inRelated = 1;  // LogicalIndex::relatedType
constexpr uint8_t inReferring = 2;
constexpr std::wstring_view hiddenPrefix = L".r";
constexpr uint32_t letters = 26;

// One end: a table, and its columns in the order of the relation.
struct End {
    CatalogObject object;
    TableDefinition table;
    std::vector<size_t> columns;  // places in table.columns

    uint16_t number(size_t i) const { return table.columns[columns[i]].number; }
};

End endOf(const SchemaChange& change, std::wstring_view table) {
    End end;
    end.object = ownTable(change.database(), table);
    end.table = change.definition(end.object);
    return end;
}

size_t columnOf(const TableDefinition& table, const std::wstring& name) {
    const auto place = table.columnByName(name);
    if (!place) throw Error(invalidColumn, {name}, {.table = table.name});
    return *place;
}

void takeColumn(End& end, const std::wstring& name) {
    const size_t place = columnOf(end.table, name);
    if (std::find(end.columns.begin(), end.columns.end(), place) != end.columns.end()) {
        throw Error(FieldDefinedTwice, {name}, {.table = end.table.name});
    }
    end.columns.push_back(place);
}

void findColumns(End& primary, End& foreign, const Relation& relation) {
    for (const RelationColumns& pair : relation.columns) {
        takeColumn(primary, pair.column);
        takeColumn(foreign, pair.foreignColumn);
        const Column& column = primary.table.columns[primary.columns.back()];
        const Column& other = foreign.table.columns[foreign.columns.back()];
        if (column.type != other.type ||
            (column.type == ColumnType::Numeric && column.scale != other.scale)) {
            throw Error(differentColumns, {}, {.table = foreign.table.name});
        }
        if (primary.table.page == foreign.table.page && column.number == other.number) {
            throw Error(relationWithItself, {}, {.table = foreign.table.name});
        }
    }
}

// Where the index's column `number` is among the relation's columns.
std::optional<size_t> positionIn(const End& end, uint16_t number) {
    for (size_t i = 0; i < end.columns.size(); ++i) {
        if (end.number(i) == number) return i;
    }
    return std::nullopt;
}

// The unique index over exactly the columns of the primary table, in any order; the primary key
// where it is one.
size_t uniqueIndexOf(const End& primary) {
    std::optional<size_t> found;
    for (const LogicalIndex& index : primary.table.indexes) {
        const RealIndex& real = primary.table.realOf(index);
        const bool isOverColumns =
            real.isUnique() && real.columns.size() == primary.columns.size() &&
            std::all_of(real.columns.begin(), real.columns.end(), [&](const IndexColumn& column) {
                return positionIn(primary, column.column).has_value();
            });
        if (!isOverColumns) continue;
        if (index.isPrimary()) return index.realIndex;
        if (!found) found = index.realIndex;
    }
    if (!found) throw Error(notUnique, {primary.table.name}, {.table = primary.table.name});
    return *found;
}

// An index over exactly these columns in this order, whatever else it asks for, so long as every
// row is in it; a new one where there is none.
size_t referringIndex(TableDefinition& table, const std::vector<IndexColumn>& columns) {
    for (size_t i = 0; i < table.realIndexes.size(); ++i) {
        const RealIndex& real = table.realIndexes[i];
        if (!real.ignoresNulls() &&
            std::equal(real.columns.begin(), real.columns.end(), columns.begin(), columns.end(),
                       [](const IndexColumn& a, const IndexColumn& b) {
                           return a.column == b.column && a.ascending == b.ascending;
                       })) {
            return i;
        }
    }
    return realIndexOver(table, columns, 0);
}

// ".rB" for an index that gets the number 1, as other programs do it.
std::wstring hiddenName(const TableDefinition& table) {
    uint32_t number = 0;
    for (const LogicalIndex& index : table.indexes)
        number = std::max(number, index.number + 1);
    std::wstring name;
    do {
        name = hiddenPrefix;
        for (uint32_t rest = number / letters; rest > 0; rest /= letters)
            name += static_cast<wchar_t>(L'A' + rest % letters);
        name += static_cast<wchar_t>(L'A' + number++ % letters);
    } while (table.indexByName(name) != nullptr);
    return name;
}

// Every row that has no Null in the columns refers to a row of the other table.
void checkRows(const SchemaChange& change, const TableDefinition& referring,
               const std::vector<IndexColumn>& columns, const TableDefinition& related,
               const RealIndex& unique) {
    const KeyEncoder encoder(change.format(), related, unique);
    encoder.requireUsable();
    std::vector<size_t> places;
    for (const IndexColumn& column : columns)
        places.push_back(*referring.columnByNumber(column.column));
    IndexCursor cursor(change.pages(), unique.rootPage);
    std::vector<Value> values(places.size());
    KeyBytes key;
    const Table table = change.table(referring);
    for (RowCursor rows = table.scan(); rows.next();) {
        for (size_t i = 0; i < places.size(); ++i)
            rows.value(places[i], values[i]);
        if (std::any_of(values.begin(), values.end(), isNull)) continue;
        encoder.encode(values, key);
        if (!cursor.seek({key.data(), key.size()})) {
            throw Error(RelatedRecordRequired, {related.name}, {.table = referring.name});
        }
    }
}

LogicalIndex relationIndex(std::wstring name, size_t real, uint8_t type, uint32_t otherPage,
                           uint32_t flags) {
    LogicalIndex index;
    index.name = std::move(name);
    index.realIndex = static_cast<uint32_t>(real);
    index.kind = IndexKind::Foreign;
    index.relatedType = type;
    index.relatedTablePage = otherPage;
    index.cascadeUpdates = (flags & relationFlags::cascadeUpdates) != 0;
    index.cascadeDeletes = (flags & relationFlags::cascadeDeletes) != 0;
    index.nullsOnDelete = (flags & relationFlags::nullsOnDelete) != 0;
    return index;
}

LogicalIndex& byNumber(TableDefinition& table, uint32_t number) {
    return *std::find_if(table.indexes.begin(), table.indexes.end(),
                         [&](const LogicalIndex& index) { return index.number == number; });
}

// Links the two tables by a pair of logical indexes. Both are the same object for a table that
// refers to itself.
void enforce(SchemaChange& change, End& primary, End& foreign, const Relation& relation) {
    const bool isOne = primary.table.page == foreign.table.page;
    TableDefinition& related = primary.table;
    TableDefinition& referring = isOne ? primary.table : foreign.table;
    const size_t unique = uniqueIndexOf(primary);
    std::vector<IndexColumn> columns;
    for (const IndexColumn& column : related.realIndexes[unique].columns)
        columns.push_back({foreign.number(*positionIn(primary, column.column)), true});
    checkRows(change, referring, columns, related, related.realIndexes[unique]);

    const size_t real = referringIndex(referring, columns);
    std::wstring name =
        referring.indexByName(relation.name) == nullptr ? relation.name : hiddenName(referring);
    const uint32_t referringNumber = addLogicalIndex(
        referring, relationIndex(std::move(name), real, inReferring, related.page, relation.flags));
    const uint32_t relatedNumber = addLogicalIndex(
        related,
        relationIndex(hiddenName(related), unique, inRelated, referring.page, relation.flags));
    byNumber(referring, referringNumber).relatedIndex = relatedNumber;
    byNumber(related, relatedNumber).relatedIndex = referringNumber;

    change.changing();
    makeIndex(change, referring, real, relation.name);
    writeDefinition(change.allocator(), related);
    if (!isOne) writeDefinition(change.allocator(), referring);
}

void addRows(Database& database, const Relation& relation, const std::wstring& table,
             const std::wstring& foreignTable) {
    SystemTable rows(database, relationsTable);
    for (size_t i = 0; i < relation.columns.size(); ++i) {
        rows.insert({{L"szRelationship", relation.name},
                     {L"grbit", static_cast<int32_t>(relation.flags)},
                     {L"ccolumn", static_cast<int32_t>(relation.columns.size())},
                     {L"icolumn", static_cast<int32_t>(i)},
                     {L"szObject", foreignTable},
                     {L"szColumn", relation.columns[i].foreignColumn},
                     {L"szReferencedObject", table},
                     {L"szReferencedColumn", relation.columns[i].column}});
    }
    addObject(database, {.id = newObjectId(database),
                         .container = relationsContainer,
                         .name = relation.name,
                         .type = ObjectType::Relation});
}

void requireFreeRelationName(const Database& database, const std::wstring& name) {
    const auto& objects = database.objects();
    const bool isObject =
        std::any_of(objects.begin(), objects.end(), [&](const CatalogObject& object) {
            return object.type == ObjectType::Relation && sameName(object.name, name);
        });
    const std::vector<Relation> relations = database.relations();
    if (isObject || std::any_of(relations.begin(), relations.end(), [&](const Relation& other) {
            return sameName(other.name, name);
        })) {
        throw Error(ObjectExists, {name}, {.file = database.name()});
    }
}

// True when an index's columns are those that a relation names, in any order.
bool isOver(const TableDefinition& table, const RealIndex& real, const Relation& relation) {
    return real.columns.size() == relation.columns.size() &&
           std::all_of(real.columns.begin(), real.columns.end(), [&](const IndexColumn& column) {
               const std::wstring& name = table.columns[*table.columnByNumber(column.column)].name;
               return std::any_of(relation.columns.begin(), relation.columns.end(),
                                  [&](const RelationColumns& pair) {
                                      return equalIgnoringCase(pair.foreignColumn, name);
                                  });
           });
}

// The relation's index in the table that refers: the one that has its name, else one that no other
// relation has a claim to by its name.
const LogicalIndex* referringEnd(const Database& database, const TableDefinition& referring,
                                 uint32_t related, const Relation& relation) {
    const LogicalIndex* found = nullptr;
    for (const LogicalIndex& index : referring.indexes) {
        if (!index.isForeign() || index.relatedType != inReferring ||
            index.relatedTablePage != related ||
            !isOver(referring, referring.realOf(index), relation)) {
            continue;
        }
        if (equalIgnoringCase(index.name, relation.name)) return &index;
        if (database.object(index.name, ObjectType::Relation) == nullptr) found = &index;
    }
    return found;
}

void removeByNumber(SchemaChange& change, TableDefinition& table, uint32_t number,
                    uint8_t relatedType, uint32_t otherPage) {
    for (size_t i = 0; i < table.indexes.size(); ++i) {
        const LogicalIndex& index = table.indexes[i];
        if (index.isForeign() && index.number == number && index.relatedType == relatedType &&
            index.relatedTablePage == otherPage) {
            removeLogicalIndex(change.allocator(), table, i);
            return;
        }
    }
}

// Takes the pair of logical indexes away. A damaged file may lack one of them.
void release(SchemaChange& change, const CatalogObject& relatedObject,
             const CatalogObject& referringObject, const Relation& relation) {
    TableDefinition referring = change.definition(referringObject);
    const uint32_t relatedPage = relatedObject.definitionPage();
    const LogicalIndex* end = referringEnd(change.database(), referring, relatedPage, relation);
    if (end == nullptr) return;
    const uint32_t number = end->number;
    const uint32_t relatedNumber = end->relatedIndex;
    const bool isOne = relatedPage == referring.page;
    removeByNumber(change, referring, number, inReferring, relatedPage);
    if (isOne) {
        removeByNumber(change, referring, relatedNumber, inRelated, referring.page);
    } else {
        TableDefinition related = change.definition(relatedObject);
        removeByNumber(change, related, relatedNumber, inRelated, referring.page);
        writeDefinition(change.allocator(), related);
    }
    writeDefinition(change.allocator(), referring);
}

}  // namespace

void enforceRelation(SchemaChange& change, const Relation& relation) {
    End primary = endOf(change, relation.table);
    End foreign = endOf(change, relation.foreignTable);
    findColumns(primary, foreign, relation);
    enforce(change, primary, foreign, relation);
}

}  // namespace schema

using namespace schema;

void createRelation(Database& database, const Relation& relation) {
    SchemaChange change(database);
    checkName(relation.name);
    requireFreeRelationName(database, relation.name);
    if (relation.columns.empty()) throw Error(noColumns, {relation.name});
    const CatalogObject table = ownOrLinkedTable(database, relation.table);
    const CatalogObject foreignTable = ownOrLinkedTable(database, relation.foreignTable);
    const bool isEnforced = (relation.flags & relationFlags::notEnforced) == 0;
    if (isEnforced || (table.isTable() && foreignTable.isTable())) {
        End primary = endOf(change, relation.table);
        End foreign = endOf(change, relation.foreignTable);
        findColumns(primary, foreign, relation);
        if (isEnforced) enforce(change, primary, foreign, relation);
    }

    change.changing();
    addRows(database, relation, table.name, foreignTable.name);
    changeObject(database, table);
    if (foreignTable.id != table.id) changeObject(database, foreignTable);
    change.done();
}

void dropRelation(Database& database, std::wstring_view name) {
    SchemaChange change(database);
    const std::vector<Relation> relations = database.relations();
    const auto relation =
        std::find_if(relations.begin(), relations.end(),
                     [&](const Relation& one) { return equalIgnoringCase(one.name, name); });
    if (relation == relations.end()) {
        throw Error(ItemNotFound, {std::wstring(name)}, {.file = database.name()});
    }
    const auto copyOf = [&](const std::wstring& table, ObjectType type) {
        const CatalogObject* object = database.object(table, type);
        return object == nullptr ? std::nullopt : std::optional(*object);
    };
    const auto related = copyOf(relation->table, ObjectType::Table);
    const auto referring = copyOf(relation->foreignTable, ObjectType::Table);
    const auto object = copyOf(relation->name, ObjectType::Relation);

    change.changing();
    if (related && referring) release(change, *related, *referring, *relation);
    SystemTable rows(database, relationsTable);
    const size_t nameColumn = rows.column(L"szRelationship");
    rows.erase(rows.find(
        [&](const RowCursor& row) { return equalIgnoringCase(textAt(row, nameColumn), name); }));
    if (object) removeObject(database, *object);
    if (related) changeObject(database, *related);
    if (referring && (!related || referring->id != related->id)) {
        changeObject(database, *referring);
    }
    change.done();
}

}  // namespace sg::jet
