#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/jet/expression/expression_functions.h"
#include "host/jet/expression/expression_node.h"
#include "host/jet/values/value.h"
#include "host/sql/run/types.h"

// A query of the dialect, translated for SQLite.
namespace sg::jet {
class Database;
}

namespace sg::sql {

// A call out of SQLite's text into the one implementation of the dialect's operators and functions:
// "jet(n, arguments)" is the n-th.
struct CallSite {
    enum class Kind : uint8_t {
        Operator,  // `op`, two arguments; Concatenate more
        Pattern,   // of ALIKE, as one of LIKE; one
        Between,   // three
        Negate,
        Not,
        Function,  // `function`
        Convert,   // to `result`
        Truth,     // of a condition
    };
    Kind kind = Kind::Operator;
    jet::detail::Operator op = jet::detail::Operator::Add;
    const jet::detail::Function* function = nullptr;
    std::vector<Type> arguments;
    Type result;
    mutable std::vector<jet::Value> values{};  // of the call at hand, kept for their memory
};

// A table that the text names "jetN", N being its place.
struct TableUse {
    jet::Database* database = nullptr;
    std::wstring name;  // in that database
};

// The column of a table of the session's own database that a column is, as it stands there.
struct FieldOrigin {
    std::wstring table;
    std::wstring column;
};

struct OutputColumn {
    std::wstring name;
    Type type;
    FieldOrigin field{};
};

// What the text names "t0", "t1"...
struct NamedSource {
    std::wstring name;
    TableUse table;  // without a database for a query
};

// Only the first rows count: so many, and those behind them whose last columns of the text, the
// keys of the order, are still the same.
struct FirstRows {
    uint64_t count = 0;
    size_t keys = 0;  // columns behind Program::columns
};

struct Program {
    std::string text;
    std::vector<std::string> common;  // queries that the text names "q0", "q1"..., and later ones
    std::vector<jet::Value> bound;    // to ?1, ?2...
    std::vector<CallSite> calls;
    std::vector<TableUse> tables;
    std::vector<OutputColumn> columns;
    std::map<std::string, NamedSource> sources;
    std::optional<FirstRows> first;
};

}  // namespace sg::sql
