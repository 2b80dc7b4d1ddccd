#include "host/jet/schema/schema_catalog.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <limits>
#include <set>

#include "base/text.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/index/sort_order.h"

namespace sg::jet::schema {
namespace {

constexpr size_t longestName = 64;
constexpr int noPermission = 3033;
constexpr int linkedTable = 3057;
constexpr int invalidName = 3125;
constexpr int noSuchColumn = 3381;

constexpr std::wstring_view objectsTable = L"MSysObjects";
constexpr std::wstring_view accessTable = L"MSysACEs";

constexpr int32_t allAccess = 0xFFFFF;
// An account's identifier differs so from the engine's own when it stands for whoever makes an
// object. Both are masked alike in every file.
constexpr uint8_t creatorMark = 0x03 ^ 0x04;

bool isNamed(const CatalogObject& object) {
    return object.isTable() || object.isLinked() || object.type == ObjectType::Query;
}

Date now() {
    const auto clock = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(clock);
    std::tm local{};
    localtime_r(&seconds, &local);
    constexpr double secondsADay = 86400;
    const std::chrono::sys_days day =
        std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
    constexpr std::chrono::sys_days epoch =
        std::chrono::year(1899) / std::chrono::December / std::chrono::day(30);
    return {static_cast<double>((day - epoch).count()) +
            (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / secondsADay};
}

// Who may do what with an object.
struct Access {
    Bytes account;
    int32_t rights = 0;
};

const CatalogObject& containerNamed(const Database& database, std::wstring_view name) {
    const CatalogObject* found = database.object(name, ObjectType::Container);
    if (found == nullptr) throwDamaged(L"there is no container " + std::wstring(name));
    return *found;
}

Bytes ownerOf(const SystemTable& objects, const CatalogObject& object) {
    const Value value = objects.value(object.row, L"Owner");
    const Bytes* owner = std::get_if<Bytes>(&value);
    return owner == nullptr ? Bytes() : *owner;
}

// The account that makes objects: the one that has made the database.
Bytes creator(const Database& database, const SystemTable& objects,
              const CatalogObject& container) {
    const auto& all = database.objects();
    const auto own = std::find_if(all.begin(), all.end(), [](const CatalogObject& object) {
        return object.type == ObjectType::Database;
    });
    return ownerOf(objects, own != all.end() ? *own : container);
}

// What a new object gets from its container: its maker first, with what the container grants to
// makers.
std::vector<Access> inheritedAccess(Database& database, const SystemTable& objects,
                                    const CatalogObject& container, const Bytes& owner) {
    const SystemTable table(database, accessTable);
    const size_t object = table.column(L"ObjectId");
    const size_t inherits = table.column(L"FInheritable");
    const size_t account = table.column(L"SID");
    const size_t rights = table.column(L"ACM");
    Bytes maker = ownerOf(objects, container);
    if (!maker.empty()) maker.back() ^= creatorMark;

    std::vector<Access> list{{owner, 0}};
    table.forEach([&](const RowCursor& row) {
        if (numberAt(row, object) != container.id || row.value(inherits) != Value(true)) return;
        const Value held = row.value(account);
        const Bytes* bytes = std::get_if<Bytes>(&held);
        if (bytes == nullptr) return;
        const Bytes& who = *bytes == maker ? owner : *bytes;
        const auto found = std::find_if(list.begin(), list.end(),
                                        [&](const Access& one) { return one.account == who; });
        if (found != list.end()) {
            found->rights |= numberAt(row, rights);
        } else {
            list.push_back({who, numberAt(row, rights)});
        }
    });
    if (list.size() == 1 && list.front().rights == 0) list.front().rights = allAccess;
    return list;
}

void addAccess(Database& database, int32_t object, const std::vector<Access>& access) {
    SystemTable table(database, accessTable);
    for (const Access& one : access) {
        table.insert({{L"ObjectId", object},
                      {L"SID", one.account},
                      {L"ACM", one.rights},
                      {L"FInheritable", false}});
    }
}

}  // namespace

// --- names ---

void checkName(std::wstring_view name) {
    constexpr std::wstring_view refused = L".!`[]";
    const bool isValid =
        !name.empty() && name.size() <= longestName && name.front() != L' ' &&
        std::none_of(name.begin(), name.end(), [&](wchar_t c) {
            return (c >= 0 && c < L' ') || refused.find(c) != std::wstring_view::npos;
        });
    if (!isValid) throw Error(invalidName, {std::wstring(name)});
}

bool sameName(std::wstring_view a, std::wstring_view b) {
    if (equalIgnoringCase(a, b)) return true;
    KeyBytes keyOfA;
    KeyBytes keyOfB;
    return appendTextKey(TextOrder::GeneralLegacy, a, false, keyOfA) &&
           appendTextKey(TextOrder::GeneralLegacy, b, false, keyOfB) && keyOfA == keyOfB;
}

void requireFreeName(const Database& database, std::wstring_view name, int32_t except) {
    for (const CatalogObject& object : database.objects()) {
        if (isNamed(object) && object.id != except && sameName(object.name, name)) {
            throw Error(object.type == ObjectType::Query ? ObjectExists : TableExists,
                        {object.name}, {.file = database.name()});
        }
    }
}

CatalogObject ownOrLinkedTable(const Database& database, std::wstring_view name) {
    for (const CatalogObject& object : database.objects()) {
        if ((!object.isTable() && !object.isLinked()) || !equalIgnoringCase(object.name, name)) {
            continue;
        }
        if (object.isTable() && (object.flags & objectFlags::system) != 0) {
            throw Error(noPermission, {object.name}, {.file = database.name()});
        }
        return object;
    }
    throw Error(InputTableNotFound, {std::wstring(name)}, {.file = database.name()});
}

CatalogObject ownTable(const Database& database, std::wstring_view name) {
    CatalogObject object = ownOrLinkedTable(database, name);
    if (object.isLinked()) {
        throw Error(linkedTable, {}, {.file = database.name(), .table = object.name});
    }
    return object;
}

size_t requireColumn(const TableDefinition& table, std::wstring_view column) {
    const auto place = table.columnByName(column);
    if (!place) throw Error(noSuchColumn, {table.name, std::wstring(column)});
    return *place;
}

// --- changes ---

void SchemaChange::changing() {
    scope_.changing();
    // Also what fails from here on is told to those who have read a part of it.
    scope_.schemaChanged();
}

void SchemaChange::done() {
    scope_.schemaChanged();
    scope_.done();
}

TableDefinition SchemaChange::definition(const CatalogObject& table) const {
    TableDefinition definition = TableDefinition::read(pages(), table.definitionPage());
    definition.name = table.name;
    return definition;
}

Table SchemaChange::table(const TableDefinition& definition) const {
    return {pages(), std::make_shared<const TableDefinition>(definition)};
}

SystemTable::SystemTable(Database& database, std::wstring_view name) : database_(&database) {
    const CatalogObject* found = database.object(name, ObjectType::Table);
    if (found == nullptr) throwDamaged(L"there is no table " + std::wstring(name));
    page_ = found->definitionPage();
}

size_t SystemTable::column(std::wstring_view name) const {
    const Table here = table();
    const auto place = here.definition().columnByName(name);
    if (!place) throwDamaged(here.name() + L" has no column " + std::wstring(name), page_);
    return *place;
}

void SystemTable::forEach(const std::function<void(const RowCursor&)>& visit) const {
    for (RowCursor rows = table().scan(); rows.next();)
        visit(rows);
}

std::vector<RowId> SystemTable::find(const std::function<bool(const RowCursor&)>& isWanted) const {
    std::vector<RowId> found;
    forEach([&](const RowCursor& row) {
        if (isWanted(row)) found.push_back(row.id());
    });
    return found;
}

Value SystemTable::value(RowId row, std::wstring_view name) const {
    RowCursor rows(table());
    if (!rows.seek(row)) throwDamaged(L"a row of " + table().name() + L" has gone", row.page);
    return rows.value(column(name));
}

void SystemTable::insert(const std::vector<Field>& fields) {
    std::vector<Value> row(table().definition().columns.size());
    for (const auto& [name, value] : fields)
        row[column(name)] = value;
    database_->writerAt(page_).insert(row);
}

void SystemTable::update(RowId id, const std::vector<Field>& fields) {
    std::vector<Value> row(table().definition().columns.size());
    std::vector<bool> changed(row.size());
    for (const auto& [name, value] : fields) {
        const size_t place = column(name);
        row[place] = value;
        changed[place] = true;
    }
    database_->writerAt(page_).update(id, row, changed);
}

void SystemTable::erase(const std::vector<RowId>& rows) {
    for (const RowId row : rows)
        database_->writerAt(page_).erase(row);
}

int32_t numberAt(const RowCursor& row, size_t column) {
    const Value value = row.value(column);
    if (const auto* held = std::get_if<int32_t>(&value)) return *held;
    if (const auto* held = std::get_if<int16_t>(&value)) return *held;
    if (const auto* held = std::get_if<uint8_t>(&value)) return *held;
    return 0;
}

std::wstring textAt(const RowCursor& row, size_t column) {
    const Value value = row.value(column);
    const auto* held = std::get_if<std::wstring>(&value);
    return held == nullptr ? std::wstring() : *held;
}

// --- objects ---

int32_t newObjectId(const Database& database) {
    std::set<int32_t> taken;
    for (const CatalogObject& object : database.objects()) {
        if (object.id < 0) taken.insert(object.id);
    }
    if (taken.empty()) return std::numeric_limits<int32_t>::min();
    if (*taken.rbegin() < -1) return *taken.rbegin() + 1;
    // Replicated files have identifiers from all over the range.
    int32_t id = std::numeric_limits<int32_t>::min();
    while (taken.count(id) != 0)
        ++id;
    return id;
}

void addObject(Database& database, const NewObject& object) {
    const CatalogObject container = containerNamed(database, object.container);
    SystemTable objects(database, objectsTable);
    const Bytes owner = creator(database, objects, container);
    const std::vector<Access> access = inheritedAccess(database, objects, container, owner);
    const Date date = now();

    std::vector<Field> fields = object.fields;
    fields.insert(fields.end(), {{L"Id", object.id},
                                 {L"ParentId", container.id},
                                 {L"Name", std::wstring(object.name)},
                                 {L"Type", static_cast<int16_t>(object.type)},
                                 {L"Flags", static_cast<int32_t>(object.flags)},
                                 {L"DateCreate", date},
                                 {L"DateUpdate", date},
                                 {L"Owner", owner}});
    objects.insert(fields);
    addAccess(database, object.id, access);
}

void inheritAccess(Database& database, int32_t object, const CatalogObject& container) {
    const SystemTable objects(database, objectsTable);
    const Bytes owner = creator(database, objects, container);
    addAccess(database, object, inheritedAccess(database, objects, container, owner));
}

void removeObject(Database& database, const CatalogObject& object) {
    SystemTable access(database, accessTable);
    const size_t id = access.column(L"ObjectId");
    access.erase(access.find([&](const RowCursor& row) { return numberAt(row, id) == object.id; }));
    SystemTable(database, objectsTable).erase({object.row});
}

void changeObject(Database& database, const CatalogObject& object, std::vector<Field> fields) {
    fields.emplace_back(L"DateUpdate", now());
    SystemTable(database, objectsTable).update(object.row, fields);
}

Field propertiesField(const Properties& properties, const Format& format) {
    Bytes bytes = properties.serialize(format);
    return {L"LvProp", bytes.empty() ? Value() : Value(std::move(bytes))};
}

// --- relations ---

bool isRelated(const Database& database, std::wstring_view table, std::wstring_view column) {
    const auto is = [](std::wstring_view a, std::wstring_view b) {
        return b.empty() || equalIgnoringCase(a, b);
    };
    const std::vector<Relation> relations = database.relations();
    return std::any_of(relations.begin(), relations.end(), [&](const Relation& relation) {
        return std::any_of(relation.columns.begin(), relation.columns.end(), [&](const auto& pair) {
            return (is(relation.table, table) && is(pair.column, column)) ||
                   (is(relation.foreignTable, table) && is(pair.foreignColumn, column));
        });
    });
}

void renameInRelations(Database& database, std::wstring_view table, std::wstring_view column,
                       std::wstring_view newName) {
    SystemTable relations(database, relationsTable);
    constexpr std::pair<std::wstring_view, std::wstring_view> ends[] = {
        {L"szObject", L"szColumn"}, {L"szReferencedObject", L"szReferencedColumn"}};
    for (const auto& [tableField, columnField] : ends) {
        const size_t tableAt = relations.column(tableField);
        const size_t columnAt = relations.column(columnField);
        const std::vector<RowId> rows = relations.find([&](const RowCursor& row) {
            return equalIgnoringCase(textAt(row, tableAt), table) &&
                   (column.empty() || equalIgnoringCase(textAt(row, columnAt), column));
        });
        for (const RowId row : rows) {
            relations.update(row,
                             {{column.empty() ? tableField : columnField, std::wstring(newName)}});
        }
    }
}

}  // namespace sg::jet::schema
