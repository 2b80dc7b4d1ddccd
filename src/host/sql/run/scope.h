#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/sql/run/program.h"
#include "host/sql/syntax.h"

namespace sg::sql {

// What a text is, where that makes a difference to what is made of it. SQLite's parser takes no
// deep nesting, so that chains of one operator are written without parentheses in them.
enum class Shape : uint8_t {
    Other,
    Column,  // which has its own collation
    And,     // of these four the text is in parentheses
    Or,
    Sum,
    Product,
    Concatenation,
};

// An expression in SQLite's text.
struct Typed {
    std::string sql;
    Type type;
    bool isCondition = false;  // 1, 0 and Null, as SQLite's own comparisons give them
    std::optional<jet::Value> constant;
    Shape shape = Shape::Other;
    size_t call = 0;  // of a Concatenation: its place in Program::calls
};

// A query in SQLite's text; its columns are c0, c1...
struct Translated {
    std::string sql;
    std::vector<OutputColumn> columns;
};

struct ScopeColumn {
    std::wstring name;
    Type type;
    std::string sql;
};

// A table or query of a FROM clause.
struct ScopeSource {
    std::wstring name;
    std::string alias;  // in SQLite's text
    std::optional<TableUse> table;
    std::vector<ScopeColumn> columns;  // in the order in which programs show them
};

// What the names of a query may be.
struct Scope {
    std::vector<ScopeSource> sources;
    Scope* outer = nullptr;
    std::string from;  // SQLite's text
    std::vector<std::pair<std::wstring, const Expression*>> aliases;

    bool isGrouped = false;
    std::set<std::wstring> groupTexts;   // in capitals
    std::set<std::string> groupColumns;  // in SQLite's text
    bool mayAggregate = false;           // not in WHERE and its like
    int ungrouped = 0;                   // above 0 inside of an aggregate or of what is grouped by
    std::string filter;                  // the rows that aggregates count; empty: all
};

}  // namespace sg::sql
