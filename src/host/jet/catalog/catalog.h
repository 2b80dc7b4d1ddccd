#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/format/error.h"
#include "host/jet/format/row_id.h"
#include "host/jet/pages/table.h"
#include "host/jet/values/value.h"

// What the system tables say of the file's objects. See docs/formats/jet.md, "The catalog".
namespace sg::jet {

// Values of the catalog's Type column that the engine knows; programs add their own.
enum class ObjectType : int16_t {
    Table = 1,
    Database = 2,
    Container = 3,
    LinkedOdbcTable = 4,
    Query = 5,
    LinkedTable = 6,
    SubObject = 7,
    Relation = 8,
};

namespace objectFlags {
inline constexpr uint32_t system = 0x80000000;
inline constexpr uint32_t systemToo = 0x00000002;
inline constexpr uint32_t hidden = 0x00000008;
}  // namespace objectFlags

// A row of MSysObjects.
struct CatalogObject {
    RowId row;
    int32_t id = 0;  // of a table: its definition's page
    int32_t parent = 0;
    std::wstring name;
    ObjectType type = ObjectType::Table;
    uint32_t flags = 0;
    Date created;
    Date updated;
    std::wstring database;     // linked tables: path of the other file
    std::wstring connect;      // linked tables: connect string without the database
    std::wstring foreignName;  // linked tables: the table's name there

    bool isSystem() const { return (flags & (objectFlags::system | objectFlags::systemToo)) != 0; }
    bool isHidden() const { return (flags & objectFlags::hidden) != 0; }
    bool isTable() const { return type == ObjectType::Table; }
    bool isLinked() const {
        return type == ObjectType::LinkedTable || type == ObjectType::LinkedOdbcTable;
    }
    uint32_t definitionPage() const { return static_cast<uint32_t>(id) & 0xffffff; }
};

namespace relationFlags {
inline constexpr uint32_t unique = 0x00000001;  // one to one
inline constexpr uint32_t notEnforced = 0x00000002;
inline constexpr uint32_t inherited = 0x00000004;
inline constexpr uint32_t cascadeUpdates = 0x00000100;
inline constexpr uint32_t cascadeDeletes = 0x00001000;
inline constexpr uint32_t nullsOnDelete = 0x00002000;
inline constexpr uint32_t leftJoin = 0x01000000;
inline constexpr uint32_t rightJoin = 0x02000000;
}  // namespace relationFlags

struct RelationColumns {
    std::wstring column;         // in `table`
    std::wstring foreignColumn;  // in `foreignTable`
};

struct Relation {
    std::wstring name;
    std::wstring table;         // the primary one, which is referred to
    std::wstring foreignTable;  // the one whose rows refer
    uint32_t flags = 0;
    std::vector<RelationColumns> columns;
};

// A row of MSysQueries.
struct QueryRow {
    RowId row;
    int32_t object = 0;  // CatalogObject::id of the query
    uint8_t attribute = 0;
    std::optional<int16_t> flag;
    std::optional<int32_t> extra;
    std::optional<std::wstring> expression;
    std::optional<std::wstring> name1;
    std::optional<std::wstring> name2;
    Bytes order;
};

// Each reads a system table to its end, in file order. What is damaged is left out and told in
// `damage`, one error for each place, up to a thousand. They throw Damaged when the table
// lacks a column that they need.
SG_API std::vector<CatalogObject> readObjects(const Table& objects, std::vector<Error>& damage);
SG_API std::vector<Relation> readRelations(const Table& relationships, std::vector<Error>& damage);
SG_API std::vector<QueryRow> readQueryRows(const Table& queries, std::vector<Error>& damage);

}  // namespace sg::jet
