#include "host/sql/parser.h"

#include "host/jet/format/error.h"
#include "host/sql/syntax_parser.h"

namespace sg::sql {
namespace detail {

SyntaxParser::SyntaxParser(std::wstring_view text, jet::detail::LexerUse use)
    : text_(text), lexer_(text, use) {
    const bool isScript = use == jet::detail::LexerUse::Script;
    if (text.size() > (isScript ? maxScriptLength : maxTextLength)) {
        throw jet::Error(TooComplex);
    }
    advance();
}

// Up to the ";" or the end.
Statement SyntaxParser::statement() {
    const size_t begin = start();
    const uint32_t before = positionalParameters_;
    Statement made;
    if (take(L"PARAMETERS")) {
        made.parameters = parameterDeclarations(ParametersSyntax);
        expectSymbol(L";", ParametersSyntax);
    }
    clause_ = NoStatement;
    made.body = body();
    if (take(L"WITH")) {
        expect(L"OWNERACCESS", clause_);
        expect(L"OPTION", clause_);
        made.ownerAccess = true;
    }
    made.range = since(begin);
    made.positionalParameters = positionalParameters_ - before;
    return made;
}

decltype(Statement::body) SyntaxParser::body() {
    if (atQuery()) {
        return query();
    }
    if (at(L"INSERT")) {
        return insert();
    }
    if (at(L"UPDATE")) {
        return update();
    }
    if (at(L"DELETE")) {
        return remove();
    }
    if (at(L"EXECUTE") || at(L"EXEC")) {
        return execute();
    }
    if (inProcedure_) {
        fail(NoStatement);
    }
    if (at(L"CREATE")) {
        inProcedure_ = true;
        decltype(Statement::body) made = create();
        inProcedure_ = false;
        return made;
    }
    if (at(L"ALTER")) {
        return alterTable();
    }
    if (at(L"DROP")) {
        return drop();
    }
    fail(NoStatement);
}

// Only ";" may follow.
void SyntaxParser::endOfStatement() {
    if (!atEnd() && !atSymbol(L";")) {
        fail(clause_);
    }
}

Statement SyntaxParser::wholeStatement() {
    Statement made = statement();
    endOfStatement();
    while (takeSymbol(L";")) {
    }
    if (!atEnd()) {
        fail(TextAfterStatement);
    }
    return made;
}

void SyntaxParser::script(std::vector<ScriptEntry>& into) {
    while (true) {
        while (takeSymbol(L";")) {
        }
        if (atEnd()) {
            return;
        }
        positionalParameters_ = 0;
        const bool explain = take(L"EXPLAIN");
        ScriptEntry entry{explain, statement()};
        endOfStatement();
        if (entry.statement.range.length > maxTextLength) {
            throw jet::Error(TooComplex);
        }
        into.push_back(std::move(entry));
    }
}

ExpressionPtr SyntaxParser::wholeExpression() {
    expressionStart_ = start();
    if (!mayBeginExpression()) {
        failExpression(L"Syntax error");
    }
    ExpressionPtr made = expression(WhereSyntax);
    if (!atEnd()) {
        failExpression(L"Syntax error");
    }
    return made;
}

}  // namespace detail

Statement parseStatement(std::wstring_view text) {
    return detail::SyntaxParser(text).wholeStatement();
}

void parseScript(std::wstring_view text, std::vector<ScriptEntry>& into) {
    detail::SyntaxParser(text, jet::detail::LexerUse::Script).script(into);
}

ExpressionPtr parseExpression(std::wstring_view text) {
    return detail::SyntaxParser(text).wholeExpression();
}

}  // namespace sg::sql
