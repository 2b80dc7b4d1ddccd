#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/jet/expression/operators.h"
#include "host/jet/values/value.h"

// The syntax tree of the Jet dialect's expressions and queries; statements.h has the statements.
//
// A node is a struct with its range in the source text and, where there are several kinds of it, a
// variant of these in `node` or `body`, to be taken apart with std::visit. Children are owned.
// Parentheses leave no node, but belong to the range of what they enclose. No tree is deeper than
// maxTreeHeight, so that it may be walked recursively.
namespace sg::sql {

inline constexpr int maxTreeHeight = 400;

// In characters of the text that was parsed.
struct Range {
    uint32_t offset = 0;
    uint32_t length = 0;

    uint32_t end() const { return offset + length; }
    std::wstring_view of(std::wstring_view text) const { return text.substr(offset, length); }
};

// One part of a name: without its brackets.
struct Name {
    std::wstring text;
    Range range;
    bool bracketed = false;
};

// "name", "table.name", "[Forms]![Main]![name]": "." and "!" count the same. Which of these are
// columns and which are parameters shows only when the tables are known.
struct ColumnName {
    std::vector<Name> qualifiers;  // outermost first
    Name name;
};

// A table or a stored query. `database` is what stands before it as in [file].table: a file or,
// where it holds a ";", a connect string as in [;DATABASE=file].table.
struct TableName {
    std::optional<Name> database;
    Name name;
    Range range;
};

// IN 'path' [connect]. Either may be empty.
struct ExternalDatabase {
    std::wstring path;
    std::wstring connect;
    Range range;
};

struct Expression;
struct Query;
struct Source;
using ExpressionPtr = std::unique_ptr<Expression>;
using QueryPtr = std::unique_ptr<Query>;
using SourcePtr = std::unique_ptr<Source>;

// ---- Expressions

// Null, a Boolean (True, Yes, On...), int16_t, int32_t, double, Date or text.
struct Literal {
    jet::Value value;
};

// "*" or "t.*": stands alone as a column of a query.
struct Star {
    std::vector<Name> qualifiers;
};

// "?"; counted in the statement, from 0 on.
struct PositionalParameter {
    uint32_t index = 0;
};

enum class UnaryOperator : uint8_t { Negate, Not };

struct Unary {
    UnaryOperator op = UnaryOperator::Negate;
    ExpressionPtr operand;
};

// But Like, which has a node of its own.
using BinaryOperator = jet::detail::Operator;

struct Binary {
    BinaryOperator op = BinaryOperator::Add;
    ExpressionPtr left;
    ExpressionPtr right;
};

struct Like {
    ExpressionPtr value;
    ExpressionPtr pattern;
    bool negated = false;
    bool ansi = false;  // ALIKE: its wildcards are % and _
};

struct Between {
    ExpressionPtr value;
    ExpressionPtr low;
    ExpressionPtr high;
    bool negated = false;
};

// With a list or with a query.
struct In {
    ExpressionPtr value;
    std::vector<ExpressionPtr> list;
    QueryPtr query;
    bool negated = false;
};

struct IsNull {
    ExpressionPtr value;
    bool negated = false;
};

// A function, whether or not there is one of that name.
struct Call {
    Name function;
    std::vector<ExpressionPtr> arguments;
};

enum class AggregateFunction : uint8_t {
    Count,
    Sum,
    Avg,
    Min,
    Max,
    First,
    Last,
    StDev,
    StDevP,
    Var,
    VarP,
};

struct Aggregate {
    AggregateFunction function = AggregateFunction::Count;
    ExpressionPtr argument;  // null: Count(*)
};

// A query in parentheses that stands for its one value.
struct Subquery {
    QueryPtr query;
};

struct Exists {
    QueryPtr query;
};

enum class Quantifier : uint8_t { Any, All };  // SOME is Any

// value op ANY (query). `op` is a comparison.
struct Quantified {
    ExpressionPtr value;
    BinaryOperator op = BinaryOperator::Equal;
    Quantifier quantifier = Quantifier::Any;
    QueryPtr query;
};

struct Expression {
    Range range;
    uint16_t height = 1;  // of the tree from here
    std::variant<Literal, ColumnName, Star, PositionalParameter, Unary, Binary, Like, Between, In,
                 IsNull, Call, Aggregate, Subquery, Exists, Quantified>
        node;
};

// ---- Where rows come from

struct TableReference {
    TableName table;
    std::optional<Name> alias;
};

// (query) AS alias, or [query]. AS alias.
struct DerivedTable {
    QueryPtr query;
    std::optional<Name> alias;
};

enum class JoinKind : uint8_t { Inner, Left, Right };

struct Join {
    JoinKind kind = JoinKind::Inner;
    SourcePtr left;
    SourcePtr right;
    ExpressionPtr condition;
};

struct Source {
    Range range;
    uint16_t height = 1;
    std::variant<TableReference, DerivedTable, Join> node;
};

struct From {
    std::vector<SourcePtr> sources;  // the comma list
    std::optional<ExternalDatabase> database;
    Range range;
};

// ---- Queries

// A column of a query; an expression that may be a Star.
struct SelectItem {
    ExpressionPtr expression;
    std::optional<Name> alias;
    Range range;
};

struct OrderItem {
    ExpressionPtr expression;  // a number literal counts columns, from 1 on
    bool descending = false;
    Range range;
};

enum class Distinctness : uint8_t { All, Distinct, DistinctRow };

struct Top {
    int32_t count = 0;
    bool percent = false;
};

// INTO table [IN database]: the rows become a new table.
struct IntoTable {
    TableName table;
    std::optional<ExternalDatabase> database;
};

// Without its ORDER BY, which is the query's.
struct Select {
    Distinctness distinctness = Distinctness::All;
    std::optional<Top> top;
    std::vector<SelectItem> items;
    std::optional<IntoTable> into;
    std::optional<From> from;
    ExpressionPtr where;  // this and `having` may be null
    std::vector<ExpressionPtr> groupBy;
    ExpressionPtr having;
};

// TABLE name: all its columns.
struct TableQuery {
    TableName table;
};

// At least two terms. A term that stands in parentheses may be ordered, or be a union itself.
struct Union {
    struct Term {
        QueryPtr query;
        bool all = false;  // UNION ALL joins it to the terms before it; of the first false
    };
    std::vector<Term> terms;
};

// TRANSFORM value SELECT ... PIVOT pivot [IN (headings)].
struct Crosstab {
    ExpressionPtr value;
    std::optional<Name> alias;
    Select select;
    ExpressionPtr pivot;
    std::vector<ExpressionPtr> headings;
};

struct Query {
    Range range;
    uint16_t height = 1;
    std::variant<Select, TableQuery, Union, Crosstab> body;
    std::vector<OrderItem> orderBy;
};

}  // namespace sg::sql
