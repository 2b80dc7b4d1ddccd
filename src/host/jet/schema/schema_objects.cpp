#include <algorithm>
#include <map>

#include "base/text.h"
#include "host/jet/catalog/query.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema/schema_catalog.h"

// Linked tables, properties and stored queries: objects that are rows of system tables only.
namespace sg::jet {
namespace schema {
namespace {

constexpr int noDatabaseNamed = 3321;
constexpr uint32_t linkFlags = 0x00200000;
constexpr uint32_t odbcLinkFlags = 0x00100000;
constexpr std::wstring_view queriesTable = L"MSysQueries";

// A connect string taken apart.
struct Link {
    ObjectType type = ObjectType::LinkedTable;
    std::wstring path;
    std::wstring rest;  // as the catalog keeps it
};

// ";DATABASE=path", or with a kind of file and options: "Kind;OPTION=value;DATABASE=path". One of
// ODBC is kept whole.
Link parseLink(std::wstring_view connect) {
    constexpr std::wstring_view pathKey = L"DATABASE=";
    constexpr std::wstring_view odbc = L"ODBC;";
    constexpr std::wstring_view ownKind = L"MS Access";
    Link link;
    if (equalIgnoringCase(connect.substr(0, odbc.size()), odbc)) {
        link.type = ObjectType::LinkedOdbcTable;
        link.rest = connect;
        return link;
    }
    bool isFirst = true;
    bool hasOptions = false;
    for (size_t at = 0; at <= connect.size(); isFirst = false) {
        const size_t end = std::min(connect.find(L';', at), connect.size());
        const std::wstring_view part = connect.substr(at, end - at);
        at = end + 1;
        if (equalIgnoringCase(part.substr(0, pathKey.size()), pathKey)) {
            link.path = part.substr(pathKey.size());
        } else if (isFirst || !part.empty()) {
            const bool isOwn = isFirst && (part.empty() || equalIgnoringCase(part, ownKind));
            hasOptions = hasOptions || !isOwn;
            link.rest += std::wstring(part) + L';';
        }
    }
    if (link.path.empty()) throw Error(noDatabaseNamed);
    if (!hasOptions) link.rest.clear();
    return link;
}

Value textOrNull(const std::wstring& text) {
    return text.empty() ? Value() : Value(text);
}

std::vector<Field> linkFields(const Link& link) {
    return {{L"Database", textOrNull(link.path)}, {L"Connect", textOrNull(link.rest)}};
}

// The table, linked table or query with this name.
CatalogObject objectWithProperties(const Database& database, std::wstring_view name) {
    if (const CatalogObject* query = database.object(name, ObjectType::Query)) return *query;
    return ownOrLinkedTable(database, name);
}

CatalogObject queryNamed(const Database& database, std::wstring_view name) {
    const CatalogObject* found = database.object(name, ObjectType::Query);
    if (found == nullptr) {
        throw Error(ItemNotFound, {std::wstring(name)}, {.file = database.name()});
    }
    return *found;
}

void eraseQueryRows(Database& database, int32_t id) {
    SystemTable rows(database, queriesTable);
    const size_t object = rows.column(L"ObjectId");
    rows.erase(rows.find([&](const RowCursor& row) { return numberAt(row, object) == id; }));
}

template <class T>
Value valueOrNull(const std::optional<T>& held) {
    return held ? Value(*held) : Value();
}

// The place among the rows of one attribute, most significant byte first.
Bytes orderOf(uint32_t place) {
    return {static_cast<uint8_t>(place >> 24), static_cast<uint8_t>(place >> 16),
            static_cast<uint8_t>(place >> 8), static_cast<uint8_t>(place)};
}

void addQueryRows(Database& database, int32_t id, const std::vector<QueryRow>& rows) {
    SystemTable table(database, queriesTable);
    std::map<uint8_t, uint32_t> places;  // by attribute
    for (const QueryRow& row : rows) {
        const uint32_t place = ++places[row.attribute];
        table.insert({{L"ObjectId", id},
                      {L"Attribute", row.attribute},
                      {L"Order", row.order.empty() ? orderOf(place) : row.order},
                      {L"Name1", valueOrNull(row.name1)},
                      {L"Name2", valueOrNull(row.name2)},
                      {L"Expression", valueOrNull(row.expression)},
                      {L"Flag", valueOrNull(row.flag)},
                      {L"LvExtra", valueOrNull(row.extra)}});
    }
}

}  // namespace
}  // namespace schema

using namespace schema;

void linkTable(Database& database, std::wstring_view name, std::wstring_view connect,
               std::wstring_view foreignName) {
    SchemaChange change(database);
    checkName(name);
    requireFreeName(database, name);
    const Link link = parseLink(connect);
    std::vector<Field> fields = linkFields(link);
    fields.emplace_back(L"ForeignName", std::wstring(foreignName));

    change.changing();
    const bool isOdbc = link.type == ObjectType::LinkedOdbcTable;
    addObject(database, {.id = newObjectId(database),
                         .name = name,
                         .type = link.type,
                         .flags = isOdbc ? odbcLinkFlags : linkFlags,
                         .fields = std::move(fields)});
    change.done();
}

void relink(Database& database, std::wstring_view name, std::wstring_view connect) {
    SchemaChange change(database);
    const CatalogObject object = ownOrLinkedTable(database, name);
    if (!object.isLinked()) {
        throw Error(OperationNotSupported, {}, {.file = database.name(), .table = object.name});
    }
    const Link link = parseLink(connect);
    std::vector<Field> fields = linkFields(link);
    fields.emplace_back(L"Type", static_cast<int16_t>(link.type));

    change.changing();
    changeObject(database, object, std::move(fields));
    change.done();
}

void setProperty(Database& database, std::wstring_view name, std::wstring_view column,
                 const Property& property) {
    SchemaChange change(database);
    const CatalogObject object = objectWithProperties(database, name);
    if (!column.empty() && object.isTable() && !change.definition(object).columnByName(column)) {
        throw Error(FieldNotFound, {std::wstring(column)}, {.table = object.name});
    }
    Properties properties = database.properties(object);
    properties.set(column, property);

    change.changing();
    changeObject(database, object, {propertiesField(properties, change.format())});
    change.done();
}

void putQuery(Database& database, std::wstring_view name, uint32_t flags,
              const std::vector<QueryRow>& rows) {
    SchemaChange change(database);
    checkName(name);
    const CatalogObject* found = database.object(name, ObjectType::Query);
    const std::optional<CatalogObject> old = found ? std::optional(*found) : std::nullopt;
    requireFreeName(database, name, old ? old->id : 0);

    change.changing();
    if (old) {
        eraseQueryRows(database, old->id);
        changeObject(database, *old, {{L"Flags", static_cast<int32_t>(flags)}});
        addQueryRows(database, old->id, rows);
    } else {
        const int32_t id = newObjectId(database);
        addObject(database, {.id = id, .name = name, .type = ObjectType::Query, .flags = flags});
        addQueryRows(database, id, rows);
    }
    change.done();
}

void dropQuery(Database& database, std::wstring_view name) {
    SchemaChange change(database);
    const CatalogObject object = queryNamed(database, name);

    change.changing();
    eraseQueryRows(database, object.id);
    removeObject(database, object);
    change.done();
}

void renameQuery(Database& database, std::wstring_view name, std::wstring_view newName) {
    SchemaChange change(database);
    const CatalogObject object = queryNamed(database, name);
    checkName(newName);
    requireFreeName(database, newName, object.id);

    change.changing();
    changeObject(database, object, {{L"Name", std::wstring(newName)}});
    change.done();
}

}  // namespace sg::jet
