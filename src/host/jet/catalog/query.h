#pragma once

#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/catalog/catalog.h"

// Stored queries: kept as the rows that describe them, and written out as SQL. See
// docs/formats/jet.md, "Stored queries".
namespace sg::jet {

enum class QueryKind : uint8_t {
    Unknown = 0,
    Select = 1,
    MakeTable = 2,
    Append = 3,
    Update = 4,
    Delete = 5,
    Crosstab = 6,
    DataDefinition = 7,
    PassThrough = 8,
    Union = 9,
};

// QueryRow::attribute.
namespace queryAttributes {
inline constexpr uint8_t start = 0;
inline constexpr uint8_t kind = 1;       // flag: QueryKind; name1 target, expression statement
inline constexpr uint8_t parameter = 2;  // name1; flag: type; extra: length of a text
inline constexpr uint8_t options = 3;    // flag: queryOptions; name1: the count of TOP
inline constexpr uint8_t remote = 4;     // name1: path; expression: connect string
inline constexpr uint8_t table = 5;      // name1 name, name2 alias, expression: a union's part
inline constexpr uint8_t column = 6;  // expression, name1 alias, name2 target; flag: queryColumns
inline constexpr uint8_t join = 7;    // name1, name2: tables; expression; flag: 1, 2, 3
inline constexpr uint8_t where = 8;
inline constexpr uint8_t groupBy = 9;
inline constexpr uint8_t having = 10;
inline constexpr uint8_t orderBy = 11;  // name1 "D": descending
inline constexpr uint8_t end = 255;
}  // namespace queryAttributes

namespace queryOptions {
inline constexpr int star = 0x01;
inline constexpr int distinct = 0x02;  // of a union: without ALL
inline constexpr int ownerAccess = 0x04;
inline constexpr int distinctRow = 0x08;
inline constexpr int top = 0x10;
inline constexpr int percent = 0x20;
}  // namespace queryOptions

namespace queryColumns {
inline constexpr int pivot = 0x01;    // of a crosstab: its values become columns
inline constexpr int row = 0x02;      // of a crosstab: it stands at the left of a row
inline constexpr int value = 0x8000;  // of an append: a value instead of a selected column
}  // namespace queryColumns

// So many rows of joins at most make a query.
inline constexpr int maxQueryJoins = 100;

// The catalog has its own numbers for the kinds, which are those that programs know: 0 of a select,
// 16 of a crosstab and so on. Unknown has 0.
inline constexpr uint32_t queryKindFlags = 0xf0;  // all bits of these
SG_API uint32_t catalogFlags(QueryKind kind);

struct SG_API Query {
    std::wstring name;
    int32_t id = 0;
    uint32_t flags = 0;          // of the catalog; objectFlags
    std::vector<QueryRow> rows;  // by attribute, and among those of one attribute by order

    bool isHidden() const { return (flags & objectFlags::hidden) != 0; }
    // What the rows say, and where they say nothing the catalog's flags.
    QueryKind kind() const;
    // Of a pass-through query; "" of all others.
    std::wstring connect() const;

    // The statement, its clauses on lines of their own, which "\r\n" ends. Throws QueryDamaged when
    // the rows do not describe one.
    std::wstring sql() const;
};

// Brings a query's rows, given in file order, into the order that Query::rows tells.
SG_API void sortQueryRows(std::vector<QueryRow>& rows);

}  // namespace sg::jet
