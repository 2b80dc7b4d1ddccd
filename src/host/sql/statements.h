#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/jet/format/format.h"
#include "host/sql/syntax.h"

// The syntax tree of the Jet dialect's statements.
namespace sg::sql {

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

// ---- Types

struct DataType {
    // Without a value for the VALUE of a parameter, which takes any.
    std::optional<jet::ColumnType> type;
    bool autoNumber = false;           // COUNTER, with `seed` and `increment`
    bool fixed = false;                // of text and binary: CHAR, BINARY
    std::optional<int32_t> length;     // of text and binary: TEXT(50)
    std::optional<int32_t> precision;  // of a DECIMAL
    std::optional<int32_t> scale;      // of a DECIMAL
    int32_t seed = 1;
    int32_t increment = 1;
    Range range;
};

// PARAMETERS name type, and the parameters of CREATE PROCEDURE.
struct ParameterDeclaration {
    ColumnName name;
    DataType type;
    Range range;
};

// ---- Actions

// With values or with a query.
struct Insert {
    TableName table;
    std::optional<ExternalDatabase> database;
    std::vector<ColumnName> columns;  // none: all of the table's, in their order
    std::vector<ExpressionPtr> values;
    QueryPtr query;
};

struct Assignment {
    ColumnName column;
    ExpressionPtr value;
    Range range;
};

struct Update {
    From from;
    std::vector<Assignment> assignments;
    ExpressionPtr where;  // may be null
};

// `items` tell the table whose rows go: columns or Stars; there may be none.
struct Delete {
    bool distinctRow = false;
    std::vector<SelectItem> items;
    From from;
    ExpressionPtr where;  // may be null
};

struct Execute {
    Name procedure;
    std::vector<ExpressionPtr> arguments;
};

// ---- Definitions

enum class ReferenceAction : uint8_t { None, Cascade, SetNull };

struct References {
    TableName table;
    std::vector<Name> columns;  // none: its primary key's
    ReferenceAction onUpdate = ReferenceAction::None;
    ReferenceAction onDelete = ReferenceAction::None;
};

enum class ConstraintKind : uint8_t { PrimaryKey, Unique, NotNull, ForeignKey };

struct Constraint {
    std::optional<Name> name;
    ConstraintKind kind = ConstraintKind::PrimaryKey;
    std::vector<Name> columns;             // none when it stands with its column
    std::optional<References> references;  // of a foreign key
    bool noIndex = false;                  // FOREIGN KEY NO INDEX
    Range range;
};

struct ColumnDefinition {
    Name name;
    DataType type;
    bool notNull = false;
    bool compression = false;
    ExpressionPtr defaultValue;  // may be null
    std::vector<Constraint> constraints;
    Range range;
};

struct CreateTable {
    TableName table;
    std::vector<ColumnDefinition> columns;
    std::vector<Constraint> constraints;
};

struct AddColumns {
    std::vector<ColumnDefinition> columns;
};

struct AddConstraint {
    Constraint constraint;
};

struct AlterColumn {
    ColumnDefinition column;
};

// ALTER COLUMN column SET DEFAULT value, or DROP DEFAULT without one.
struct AlterDefault {
    Name column;
    ExpressionPtr value;
};

struct DropColumns {
    std::vector<Name> columns;
};

struct DropConstraint {
    Name constraint;
};

struct AlterTable {
    TableName table;
    std::variant<AddColumns, AddConstraint, AlterColumn, AlterDefault, DropColumns, DropConstraint>
        action;
};

struct IndexColumn {
    Name name;
    bool descending = false;
};

struct CreateIndex {
    Name index;
    TableName table;
    std::vector<IndexColumn> columns;
    bool unique = false;
    bool primary = false;       // WITH PRIMARY
    bool disallowNull = false;  // WITH DISALLOW NULL
    bool ignoreNull = false;    // WITH IGNORE NULL
};

enum class ObjectKind : uint8_t { Table, Index, View, Procedure };

struct Drop {
    ObjectKind kind = ObjectKind::Table;
    TableName name;
    std::optional<TableName> table;  // of an index: ON it
};

struct CreateView {
    Name view;
    std::vector<Name> columns;  // their names in the view; none: the query's own
    QueryPtr query;
};

// Its parameters are the statement's, wherever they are declared.
struct CreateProcedure {
    Name procedure;
    StatementPtr statement;
};

// ---- Statements

struct Statement {
    Range range;
    std::vector<ParameterDeclaration> parameters;
    std::variant<QueryPtr, Insert, Update, Delete, Execute, CreateTable, AlterTable, CreateIndex,
                 Drop, CreateView, CreateProcedure>
        body;
    bool ownerAccess = false;           // WITH OWNERACCESS OPTION
    uint32_t positionalParameters = 0;  // how many "?" it holds
};

}  // namespace sg::sql
