// Statements of the parser that change rows, and EXECUTE.

#include "host/jet/format/error.h"
#include "host/sql/syntax_parser.h"

namespace sg::sql::detail {
namespace {

constexpr int noTableToDelete = 3128;

}  // namespace

// INSERT INTO table [(columns)] VALUES (values) | query. The other file stands before or behind the
// columns.
Insert SyntaxParser::insert() {
    clause_ = InsertSyntax;
    advance();
    expect(L"INTO", InsertSyntax);
    Insert made{tableName(InsertSyntax), externalDatabase(InsertSyntax), {}, {}, nullptr};
    if (atSymbol(L"(") && !isQueryWord(peek()) && !peek().isSymbol(L"(")) {
        advance();
        do {
            made.columns.push_back(columnName(InsertSyntax));
        } while (takeSymbol(L","));
        expectSymbol(L")", InsertSyntax);
    }
    if (at(L"IN") && !made.database) {
        made.database = externalDatabase(InsertSyntax);
    }
    if (take(L"VALUES")) {
        open(InsertSyntax);
        made.values = expressions(InsertSyntax);
        close(InsertSyntax);
    } else if (isQueryWord(token_) || atSymbol(L"(")) {
        ++queries_;  // which allows neither INTO nor TRANSFORM
        made.query = query();
        --queries_;
    } else {
        fail(InsertSyntax);
    }
    return made;
}

// UPDATE sources SET column = value, ... [WHERE condition]
Update SyntaxParser::update() {
    advance();
    take(L"DISTINCTROW");
    Update made;
    made.from = from(UpdateSyntax);
    clause_ = UpdateSyntax;
    expect(L"SET", UpdateSyntax);
    do {
        const size_t begin = start();
        Assignment assignment{columnName(UpdateSyntax), nullptr, {}};
        expectSymbol(L"=", UpdateSyntax);
        assignment.value = expression(UpdateSyntax);
        assignment.range = since(begin);
        made.assignments.push_back(std::move(assignment));
    } while (takeSymbol(L","));
    made.where = where();
    return made;
}

// DELETE [DISTINCTROW] [items] FROM sources [WHERE condition]
Delete SyntaxParser::remove() {
    clause_ = DeleteSyntax;
    advance();
    Delete made;
    made.distinctRow = take(L"DISTINCTROW");
    if (!at(L"FROM")) {
        do {
            made.items.push_back(selectItem(DeleteSyntax));
        } while (takeSymbol(L","));
    }
    if (atEnd() || atSymbol(L";")) {
        throw jet::Error(noTableToDelete);
    }
    expect(L"FROM", DeleteSyntax);
    made.from = from(FromSyntax);
    made.where = where();
    return made;
}

// EXECUTE procedure [value, ...]
Execute SyntaxParser::execute() {
    clause_ = ProcedureSyntax;
    advance();
    Execute made{name(ProcedureSyntax), {}};
    if (!atEnd() && !atSymbol(L";")) {
        made.arguments = expressions(ProcedureSyntax);
    }
    return made;
}

}  // namespace sg::sql::detail
