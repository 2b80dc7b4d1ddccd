#include "host/dao/database_session.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "host/dao/name_order.h"
#include "host/system/database_files.h"
#include "host/system/paths.h"
#include "platform/dao/recordset.h"

namespace sg::dao {
namespace {

constexpr int tableInUse = 3211;

std::wstring fullPath(const std::wstring& name) {
    return absolutePath(resolvePath(name).path);
}

bool isTable(const jet::CatalogObject& object) {
    return object.isTable() || object.isLinked();
}

bool isQuery(const jet::CatalogObject& object) {
    return object.type == jet::ObjectType::Query;
}

std::vector<jet::CatalogObject> sortedObjects(const jet::Database& database,
                                              bool (*isWanted)(const jet::CatalogObject&)) {
    std::vector<jet::CatalogObject> found;
    std::copy_if(database.objects().begin(), database.objects().end(), std::back_inserter(found),
                 isWanted);
    sortByName(found,
               [](const jet::CatalogObject& object) -> const std::wstring& { return object.name; });
    return found;
}

// The table whose design a statement changes; "" for other statements.
std::wstring changedTable(const sql::Statement& statement) {
    if (const auto* drop = std::get_if<sql::Drop>(&statement.body)) {
        return drop->table ? drop->table->name.text : drop->name.name.text;
    }
    if (const auto* alter = std::get_if<sql::AlterTable>(&statement.body)) {
        return alter->table.name.text;
    }
    const auto* index = std::get_if<sql::CreateIndex>(&statement.body);
    return index != nullptr ? index->table.name.text : std::wstring();
}

}  // namespace

void DatabaseSession::open(const std::wstring& name, jet::OpenMode mode) {
    close();
    const std::wstring path = fullPath(name);
    adopt(std::unique_ptr<jet::Database>(
        new jet::Database(jet::Database::open(path, mode, databaseOptions()))));
}

void DatabaseSession::create(const std::wstring& name, const jet::Locale& locale) {
    close();
    const std::wstring path = fullPath(name);
    adopt(std::unique_ptr<jet::Database>(
        new jet::Database(jet::Database::create(path, locale, databaseOptions()))));
}

void DatabaseSession::adopt(std::unique_ptr<jet::Database> database) {
    database_ = std::move(database);
    ++opening_;
}

void DatabaseSession::close() {
    for (CDaoRecordset* recordset : std::exchange(recordsets_, {}))
        recordset->Close();
    tables_ = {};
    queries_ = {};
    relations_ = {};
    sql_.reset();
    if (const auto closing = std::move(database_)) closing->close();
}

jet::Database& DatabaseSession::database() const {
    if (!isOpen()) throw jet::Error(jet::ObjectClosed);
    return *database_;
}

const std::vector<jet::CatalogObject>& DatabaseSession::tables() {
    if (const uint64_t stamp = database().designStamp(); tables_.stamp != stamp) {
        tables_ = {stamp, sortedObjects(*database_, isTable)};
    }
    return tables_.items;
}

const std::vector<jet::CatalogObject>& DatabaseSession::queries() {
    if (const uint64_t stamp = database().designStamp(); queries_.stamp != stamp) {
        queries_ = {stamp, sortedObjects(*database_, isQuery)};
    }
    return queries_.items;
}

const std::vector<jet::Relation>& DatabaseSession::relations() {
    if (const uint64_t stamp = database().designStamp(); relations_.stamp != stamp) {
        relations_ = {stamp, database_->relations()};
        sortByName(relations_.items, [](const jet::Relation& relation) -> const std::wstring& {
            return relation.name;
        });
    }
    return relations_.items;
}

jet::CatalogObject DatabaseSession::table(std::wstring_view name) const {
    for (const jet::CatalogObject& object : database().objects()) {
        if (isTable(object) && equalIgnoringCase(object.name, name)) return object;
    }
    throw jet::Error(jet::ItemNotFound);
}

sql::Session& DatabaseSession::sql() {
    if (sql_ == nullptr) sql_ = std::make_unique<sql::Session>(database());
    return *sql_;
}

int32_t DatabaseSession::execute(const sql::Statement& statement, const sql::Parameters& parameters,
                                 int32_t options) {
    if (const std::wstring table = changedTable(statement); !table.empty()) requireUnused(table);
    const bool fails = (options & dbFailOnError) != 0;
    return static_cast<int32_t>(sql().execute(
        statement, parameters, fails ? sql::Refused::UndoesAll : sql::Refused::IsLeftOut));
}

void DatabaseSession::requireUnused(std::wstring_view table) const {
    for (const CDaoRecordset* recordset : recordsets_) {
        if (equalIgnoringCase(recordset->GetName(), table)) {
            throw jet::Error(tableInUse, {std::wstring(table)});
        }
    }
}

}  // namespace sg::dao
