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
    bool isStrict = false;  // a column or a literal, which is compared with its own kind only
    Shape shape = Shape::Other;
    size_t call = 0;  // of a Concatenation: its place in Program::calls
};

// A row of a table that takes part in a query's row.
struct BaseRow {
    TableUse table;
    std::string id;  // SQLite's text
};

// A column of a BaseRow: its place in the table's definition.
struct Origin {
    size_t base = 0;
    size_t column = 0;
};

// What more is known of a query's column.
struct ColumnTrace {
    bool isStrict = false;
    std::optional<Origin> origin{};  // among Translated::bases, where there are any
};

// A query in SQLite's text; its columns are c0, c1..., and r0, r1... where it has `bases`.
struct Translated {
    std::string sql;
    std::vector<OutputColumn> columns;
    std::vector<ColumnTrace> traces{};  // of the columns; none where nothing is known
    std::vector<BaseRow> bases{};       // of a query whose rows may be changed through it
};

struct ScopeColumn {
    std::wstring name;
    Type type;
    std::string sql;
    bool isStrict = false;
    std::optional<Origin> origin{};  // among Scope::bases
    FieldOrigin field{};
};

// A table or query of a FROM clause.
struct ScopeSource {
    std::wstring name;
    std::string alias;  // in SQLite's text
    std::optional<TableUse> table;
    std::vector<ScopeColumn> columns;  // in the order in which programs show them
    bool isUpdatable = false;
};

// The engine's numbers for an aggregate where none may stand.
enum NoAggregate : int {
    NoAggregateInExpression = 3095,
    NoAggregateInWhere = 3096,
    NoAggregateInGroupBy = 3098,
    NoAggregateInJoin = 3099,
};

// What the names of a query may be.
struct Scope {
    std::vector<ScopeSource> sources;
    std::vector<BaseRow> bases;
    Scope* outer = nullptr;
    std::string from;  // SQLite's text
    std::vector<std::pair<std::wstring, const Expression*>> aliases;
    const Expression* whole = nullptr;  // that is being translated, with all its parts

    bool isGrouped = false;
    std::set<std::wstring> groupTexts;   // in capitals
    std::set<std::string> groupColumns;  // in SQLite's text
    bool mayAggregate = false;           // not in WHERE and its like:
    NoAggregate noAggregate = NoAggregateInWhere;
    int ungrouped = 0;   // above 0 inside of an aggregate or of what is grouped by
    std::string filter;  // the rows that aggregates count; empty: all
    bool joins = false;  // it is a join's condition
};

}  // namespace sg::sql
