// Statements of the parser that define tables, indexes and queries.

#include <iterator>

#include "host/sql/syntax_parser.h"

namespace sg::sql::detail {

decltype(Statement::body) SyntaxParser::create() {
    clause_ = CreateTableSyntax;
    advance();
    if (take(L"TABLE")) {
        return createTable();
    }
    if (take(L"UNIQUE")) {
        return createIndex(true);
    }
    if (at(L"INDEX")) {
        return createIndex(false);
    }
    if (take(L"VIEW")) {
        return createView();
    }
    if (take(L"PROCEDURE") || take(L"PROC")) {
        return createProcedure();
    }
    fail(CreateTableSyntax);
}

CreateTable SyntaxParser::createTable() {
    CreateTable made{tableName(CreateTableSyntax), {}, {}};
    expectSymbol(L"(", CreateTableSyntax);
    do {
        if (atTableConstraint()) {
            made.constraints.push_back(constraint(true));
        } else {
            made.columns.push_back(columnDefinition());
        }
    } while (takeSymbol(L","));
    expectSymbol(L")", CreateTableSyntax);
    return made;
}

// ---- Columns

ColumnDefinition SyntaxParser::columnDefinition() {
    const size_t begin = start();
    ColumnDefinition made;
    made.name = name(FieldSyntax);
    made.type = dataType(FieldSyntax);
    while (columnOption(made)) {
    }
    made.range = since(begin);
    return made;
}

bool SyntaxParser::columnOption(ColumnDefinition& column) {
    if (take(L"NOT")) {
        expect(L"NULL", FieldSyntax);
        column.notNull = true;
        return true;
    }
    if (take(L"NULL")) {
        return true;
    }
    if (take(L"DEFAULT")) {
        const std::optional<size_t> outer = std::exchange(expressionStart_, start());
        column.defaultValue = level(ConcatenateLevel);
        expressionStart_ = outer;
        return true;
    }
    if (take(L"WITH")) {
        if (!take(L"COMPRESSION") && !take(L"COMP")) {
            fail(FieldSyntax);
        }
        column.compression = true;
        return true;
    }
    if (at(L"CONSTRAINT") || at(L"PRIMARY") || at(L"UNIQUE") || at(L"REFERENCES") || at(L"CHECK")) {
        column.constraints.push_back(constraint(false));
        return true;
    }
    return false;
}

// ---- Constraints

bool SyntaxParser::atTableConstraint() {
    return at(L"CONSTRAINT") || at(L"PRIMARY") || at(L"UNIQUE") ||
           (at(L"FOREIGN") && peek().isWord(L"KEY")) || (at(L"CHECK") && peek().isSymbol(L"("));
}

Constraint SyntaxParser::constraint(bool ofTable) {
    const size_t begin = start();
    Constraint made;
    if (take(L"CONSTRAINT")) {
        made.name = name(ConstraintSyntax);
    }
    made.kind = constraintKind(made, ofTable);
    if (ofTable) {
        made.columns = names(ConstraintSyntax);
    }
    if (made.kind == ConstraintKind::ForeignKey) {
        expect(L"REFERENCES", ConstraintSyntax);
        made.references = references();
    }
    made.range = since(begin);
    return made;
}

// Reads up to the columns, or to the REFERENCES of a foreign key that stands with its column.
ConstraintKind SyntaxParser::constraintKind(Constraint& constraint, bool ofTable) {
    if (take(L"PRIMARY")) {
        expect(L"KEY", ConstraintSyntax);
        return ConstraintKind::PrimaryKey;
    }
    if (take(L"UNIQUE")) {
        return ConstraintKind::Unique;
    }
    if (take(L"NOT")) {
        expect(L"NULL", ConstraintSyntax);
        return ConstraintKind::NotNull;
    }
    if (!ofTable && at(L"REFERENCES")) {
        return ConstraintKind::ForeignKey;
    }
    if (ofTable && take(L"FOREIGN")) {
        expect(L"KEY", ConstraintSyntax);
        constraint.noIndex = take(L"NO");
        if (constraint.noIndex) {
            expect(L"INDEX", ConstraintSyntax);
        }
        return ConstraintKind::ForeignKey;
    }
    fail(ConstraintSyntax);
}

// table [(columns)] [ON UPDATE action] [ON DELETE action]
References SyntaxParser::references() {
    References made{tableName(ConstraintSyntax), {}};
    if (atSymbol(L"(")) {
        made.columns = names(ConstraintSyntax);
    }
    while (take(L"ON")) {
        const bool isUpdate = at(L"UPDATE");
        if (!isUpdate && !at(L"DELETE")) {
            fail(ConstraintSyntax);
        }
        advance();
        ReferenceAction action = ReferenceAction::Cascade;
        if (take(L"SET")) {
            expect(L"NULL", ConstraintSyntax);
            action = ReferenceAction::SetNull;
        } else {
            expect(L"CASCADE", ConstraintSyntax);
        }
        (isUpdate ? made.onUpdate : made.onDelete) = action;
    }
    return made;
}

// ---- Changes

AlterTable SyntaxParser::alterTable() {
    clause_ = AlterTableSyntax;
    advance();
    expect(L"TABLE", AlterTableSyntax);
    AlterTable made{tableName(AlterTableSyntax), {}};
    if (take(L"ADD")) {
        add(made);
    } else if (take(L"ALTER")) {
        alterColumn(made);
    } else if (take(L"DROP")) {
        if (take(L"CONSTRAINT")) {
            made.action = DropConstraint{name(AlterTableSyntax)};
            return made;
        }
        take(L"COLUMN");
        DropColumns columns;
        do {
            columns.columns.push_back(name(AlterTableSyntax));
        } while (takeSymbol(L","));
        made.action = std::move(columns);
    } else {
        fail(AlterTableSyntax);
    }
    return made;
}

void SyntaxParser::add(AlterTable& alter) {
    if (atTableConstraint()) {
        alter.action = AddConstraint{constraint(true)};
        return;
    }
    take(L"COLUMN");
    AddColumns made;
    do {
        made.columns.push_back(columnDefinition());
    } while (takeSymbol(L","));
    alter.action = std::move(made);
}

void SyntaxParser::alterColumn(AlterTable& alter) {
    take(L"COLUMN");
    if (!peek().isWord(L"SET") && !peek().isWord(L"DROP")) {
        alter.action = AlterColumn{columnDefinition()};
        return;
    }
    AlterDefault made{name(AlterTableSyntax), nullptr};
    const bool sets = at(L"SET");
    advance();
    expect(L"DEFAULT", AlterTableSyntax);
    if (sets) {
        made.value = expression(AlterTableSyntax);
    }
    alter.action = std::move(made);
}

// ---- Indexes, queries, and the end of them all

// INDEX name ON table (columns) [WITH option]
CreateIndex SyntaxParser::createIndex(bool unique) {
    clause_ = CreateIndexSyntax;
    expect(L"INDEX", CreateIndexSyntax);
    CreateIndex made;
    made.unique = unique;
    made.index = name(CreateIndexSyntax);
    expect(L"ON", CreateIndexSyntax);
    made.table = tableName(CreateIndexSyntax);
    expectSymbol(L"(", CreateIndexSyntax);
    do {
        IndexColumn column{name(CreateIndexSyntax), take(L"DESC")};
        if (!column.descending) {
            take(L"ASC");
        }
        made.columns.push_back(std::move(column));
    } while (takeSymbol(L","));
    expectSymbol(L")", CreateIndexSyntax);
    if (take(L"WITH")) {
        if (take(L"PRIMARY")) {
            made.primary = true;
        } else {
            made.disallowNull = at(L"DISALLOW");
            made.ignoreNull = at(L"IGNORE");
            if (!made.disallowNull && !made.ignoreNull) {
                fail(CreateIndexSyntax);
            }
            advance();
            expect(L"NULL", CreateIndexSyntax);
        }
    }
    return made;
}

CreateView SyntaxParser::createView() {
    CreateView made{name(CreateTableSyntax), {}, nullptr};
    if (atSymbol(L"(")) {
        made.columns = names(CreateTableSyntax);
    }
    expect(L"AS", CreateTableSyntax);
    if (!atQuery()) {
        fail(CreateTableSyntax);
    }
    ++queries_;  // which allows neither INTO nor TRANSFORM
    made.query = query();
    --queries_;
    return made;
}

// PROCEDURE name [(parameters)] AS statement, the parameters also without parentheses
CreateProcedure SyntaxParser::createProcedure() {
    clause_ = ProcedureSyntax;
    CreateProcedure made{name(ProcedureSyntax), nullptr};
    std::vector<ParameterDeclaration> parameters;
    if (takeSymbol(L"(")) {
        parameters = parameterDeclarations(ProcedureSyntax);
        expectSymbol(L")", ProcedureSyntax);
    } else if (!at(L"AS")) {
        parameters = parameterDeclarations(ProcedureSyntax);
    }
    expect(L"AS", ProcedureSyntax);
    made.statement = std::make_unique<Statement>(statement());
    std::vector<ParameterDeclaration>& all = made.statement->parameters;
    all.insert(all.begin(), std::make_move_iterator(parameters.begin()),
               std::make_move_iterator(parameters.end()));
    return made;
}

Drop SyntaxParser::drop() {
    clause_ = DropSyntax;
    advance();
    Drop made;
    if (take(L"TABLE")) {
        made.kind = ObjectKind::Table;
    } else if (take(L"INDEX")) {
        made.kind = ObjectKind::Index;
    } else if (take(L"VIEW")) {
        made.kind = ObjectKind::View;
    } else if (take(L"PROCEDURE") || take(L"PROC")) {
        made.kind = ObjectKind::Procedure;
    } else {
        fail(DropSyntax);
    }
    made.name = tableName(DropSyntax);
    if (made.kind == ObjectKind::Index) {
        expect(L"ON", DropSyntax);
        made.table = tableName(DropSyntax);
    }
    return made;
}

}  // namespace sg::sql::detail
