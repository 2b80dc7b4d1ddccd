#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/sql/run/jet_table.h"

// How the rows that a query asks of a table are come by.
namespace sg::sql {

// What an argument says of a column of an index. Equalities come first, for the index's leading
// columns in their order; then one of the others, or Low and High, for the column behind them.
enum class Bound : char {
    Equal = '=',
    Low = '>',   // also of >=: SQLite looks at the rows again
    High = '<',  // also of <=
    Like = '*',  // the argument is a pattern
};

struct AccessPath {
    enum class Kind : uint8_t {
        Scan,       // all rows, as they stand in the file
        Index,      // an index, wholly or within bounds
        Transient,  // those whose columns have certain values, by a TransientIndex
    };
    Kind kind = Kind::Scan;
    size_t index = 0;             // Index: its place among the real ones
    bool backwards = false;       // Index
    std::string bounds;           // Index: a Bound for each argument
    std::vector<size_t> columns;  // Transient: places, one for each argument

    // The form in which SQLite keeps a path: sqlite3_index_info's idxNum and idxStr.
    int number() const;
    std::string text() const;
    static AccessPath of(int number, const char* text);
};

// Chooses the best path for the constraints and the order that SQLite asks for, and tells it.
void choosePath(const JetTable& table, sqlite3_index_info* info);

// "SEARCH Rooms USING INDEX ByCode (Code=?)"; "SCAN Rooms".
std::wstring describe(const AccessPath& path, const std::wstring& name, const jet::Table& table);

}  // namespace sg::sql
