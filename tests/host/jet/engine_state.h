#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/jet/database/database.h"

// What a database holds, for tests to compare with what it should.
namespace sg::jet::test {

struct ColumnState {
    std::wstring name;
    ColumnType type = ColumnType::Long;
    bool operator==(const ColumnState&) const = default;
};

// A table whose rows have a counter "Id".
struct TableState {
    std::vector<ColumnState> columns;
    std::set<std::wstring> indexes;
    std::map<int32_t, std::vector<Value>> rows;  // by Id
    int32_t lastNumber = 0;                      // of the counter

    size_t columnByName(std::wstring_view name) const;
    bool operator==(const TableState&) const = default;
};

struct DatabaseState {
    std::map<std::wstring, TableState> tables;
    std::set<std::wstring> relations;
    bool operator==(const DatabaseState&) const = default;
};

// Reads the users' tables.
DatabaseState stateOf(const Database& database);

// The first thing in which they differ; empty when there is none.
std::string differenceOf(const DatabaseState& found, const DatabaseState& expected);

// What checkDatabase() finds, a line each.
std::string findingsIn(const Database& database);

// Looks for every row of `state` in every index of its table; answers what is not found so.
std::string missingInIndexes(Database& database, const DatabaseState& state);

}  // namespace sg::jet::test
