#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jet/catalog/catalog.h"
#include "host/jet/catalog/properties.h"
#include "host/jet/database/database.h"
#include "host/jet/database/write_scope.h"
#include "host/jet/format/row_id.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// What the parts of schema.h share: names, and the rows of the system tables. For schema_*.cpp and
// compact_*.cpp alone. See docs/formats/jet.md, "The catalog".
namespace sg::jet::schema {

// --- names ---

// Throws 3125 as schema.h says.
void checkName(std::wstring_view name);
// True when the catalog's index takes the names for equal: case, trailing blanks and characters
// without weight make no difference.
bool sameName(std::wstring_view a, std::wstring_view b);

// Throws TableExists or, for a query, ObjectExists when an object other than the one with the id
// `except` has the name.
void requireFreeName(const Database& database, std::wstring_view name, int32_t except = 0);

// The table of this file with the name; throws InputTableNotFound, 3057 for a linked one and 3033
// for the engine's own.
CatalogObject ownTable(const Database& database, std::wstring_view name);
// The same, linked ones too.
CatalogObject ownOrLinkedTable(const Database& database, std::wstring_view name);

// Throws 3381 with both names when there is no such column; answers its place.
size_t requireColumn(const TableDefinition& table, std::wstring_view column);

// --- changes ---

// One function of schema.h under way.
class SchemaChange {
  public:
    explicit SchemaChange(Database& database) : database_(&database), scope_(database) {}

    Database& database() const { return *database_; }
    PageAllocator& allocator() const { return scope_.allocator(); }
    WriteTransaction& pages() const { return scope_.pages(); }
    const Format& format() const { return allocator().format(); }

    // To be called before the first page is changed, and at the end.
    void changing();
    void done();

    // A table's definition as it stands on its pages now, its counts too.
    TableDefinition definition(const CatalogObject& table) const;
    // A table with this definition, which is copied.
    Table table(const TableDefinition& definition) const;

  private:
    Database* database_;
    WriteScope scope_;
};

// A column of a system table and what stands in it.
using Field = std::pair<std::wstring_view, Value>;

// A system table's rows. What names a table or column that is not there throws Damaged.
class SystemTable {
  public:
    SystemTable(Database& database, std::wstring_view name);

    size_t column(std::wstring_view name) const;

    void forEach(const std::function<void(const RowCursor&)>& visit) const;
    // The rows that `isWanted` accepts.
    std::vector<RowId> find(const std::function<bool(const RowCursor&)>& isWanted) const;
    // One column of one row.
    Value value(RowId row, std::wstring_view column) const;

    void insert(const std::vector<Field>& fields);
    void update(RowId row, const std::vector<Field>& fields);
    void erase(const std::vector<RowId>& rows);

  private:
    Table table() const { return database_->tableAt(page_); }

    Database* database_;
    uint32_t page_;
};

// What a row has in a column of numbers or texts; 0 or "" for anything else.
int32_t numberAt(const RowCursor& row, size_t column);
std::wstring textAt(const RowCursor& row, size_t column);

// --- objects ---

inline constexpr std::wstring_view relationsTable = L"MSysRelationships";

inline constexpr std::wstring_view tablesContainer = L"Tables";
inline constexpr std::wstring_view relationsContainer = L"Relationships";

// What identifies an object that is no table of this file: larger than all that were given.
int32_t newObjectId(const Database& database);

struct NewObject {
    int32_t id = 0;
    std::wstring_view container = tablesContainer;
    std::wstring_view name;
    ObjectType type = ObjectType::Table;
    uint32_t flags = 0;
    std::vector<Field> fields{};  // further ones
};

// Adds its row to the catalog, and what it inherits from its container about who may do what.
void addObject(Database& database, const NewObject& object);
// The second of these for an object that is in the catalog already.
void inheritAccess(Database& database, int32_t object, const CatalogObject& container);
// Takes these rows away.
void removeObject(Database& database, const CatalogObject& object);
// Sets fields of its row, and the date of its last change.
void changeObject(Database& database, const CatalogObject& object, std::vector<Field> fields = {});
// The field that keeps them.
Field propertiesField(const Properties& properties, const Format& format);

// --- relations ---

// True when a relation, enforced or not, stands on the table or on the column of it.
bool isRelated(const Database& database, std::wstring_view table, std::wstring_view column = {});
// Lets the rows of relations follow a table or, unless `column` is empty, a column to its new name.
void renameInRelations(Database& database, std::wstring_view table, std::wstring_view column,
                       std::wstring_view newName);

}  // namespace sg::jet::schema
