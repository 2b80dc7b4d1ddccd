// Operands of the parser: values, names, calls and queries in parentheses.

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/sql/made.h"
#include "host/sql/syntax_parser.h"
#include "host/sql/words.h"

namespace sg::sql::detail {
namespace {

constexpr const wchar_t* missingOperator = L"Syntax error (missing operator)";
constexpr const wchar_t* missingParenthesis = L"Missing ), ], or Item";
constexpr const wchar_t* invalidPoint = L"Invalid use of '.', '!', or '()'.";
constexpr const wchar_t* wrongArguments = L"Wrong number of arguments used with function";

int heightOf(const std::vector<ExpressionPtr>& all) {
    int height = 0;
    for (const ExpressionPtr& expression : all) {
        height = std::max<int>(height, expression->height);
    }
    return height;
}

}  // namespace

ExpressionPtr SyntaxParser::operand() {
    if (!mayBeginOperand()) {
        failExpression(missingOperator);
    }
    if (token_.kind == TokenKind::Literal) {
        return literal();
    }
    if (token_.kind == TokenKind::Symbol) {
        return atSymbol(L"(") ? parenthesized() : positionalParameter();
    }
    if (token_.kind == TokenKind::Bracketed) {
        return qualified();
    }
    return at(L"EXISTS") ? exists() : nameOrCall();
}

ExpressionPtr SyntaxParser::literal() {
    const size_t begin = start();
    Literal node{std::move(token_.value)};
    advance();
    return made(begin, std::move(node), 1);
}

ExpressionPtr SyntaxParser::positionalParameter() {
    const size_t begin = start();
    advance();
    return made(begin, PositionalParameter{positionalParameters_++}, 1);
}

// The ")" behind what stands in parentheses.
void SyntaxParser::closeOperand() {
    if (!takeSymbol(L")")) {
        failExpression(mayBeginOperand() ? missingOperator : missingParenthesis);
    }
}

// An expression, or a query with its value.
ExpressionPtr SyntaxParser::parenthesized() {
    const size_t begin = start();
    if (isQueryWord(peek())) {
        QueryPtr query = subquery();
        const int height = query->height + 1;
        return made(begin, Subquery{std::move(query)}, height);
    }
    advance();
    ExpressionPtr inner = level(ImpLevel);
    if (auto* first = std::get_if<Subquery>(&inner->node); first != nullptr && at(L"UNION")) {
        QueryPtr united = unionBehind(std::move(first->query));
        const int height = united->height + 1;
        inner = made(begin, Subquery{std::move(united)}, height);
    }
    closeOperand();
    inner->range = since(begin);
    return inner;
}

QueryPtr SyntaxParser::subquery() {
    if (!isQueryWord(peek()) && !peek().isSymbol(L"(")) {
        failExpression(L"Syntax error");
    }
    const SyntaxError outer = clause_;
    open(SelectSyntax);
    QueryPtr made = query();
    if (atEnd() && expressionStart_) {
        failExpression(missingParenthesis);
    }
    close(clause_);
    clause_ = outer;
    return made;
}

ExpressionPtr SyntaxParser::exists() {
    const size_t begin = start();
    advance();
    if (!atSymbol(L"(")) {
        failExpression(L"Syntax error");
    }
    QueryPtr query = subquery();
    const int height = query->height + 1;
    return made(begin, Exists{std::move(query)}, height);
}

// A word: a constant, a function or a name.
ExpressionPtr SyntaxParser::nameOrCall() {
    const Token& next = peek();
    if (next.isSymbol(L"(")) {
        return call();
    }
    const bool isQualified = next.isSymbol(L".") || next.isSymbol(L"!");
    std::optional<jet::Value> constant = constantOf(token_.text);
    if (!constant || isQualified) {
        return qualified();
    }
    const size_t begin = start();
    advance();
    return made(begin, Literal{std::move(*constant)}, 1);
}

// A name and what qualifies it.
ExpressionPtr SyntaxParser::qualified() {
    const size_t begin = start();
    ColumnName node{{}, anyName(SelectSyntax)};
    while (takeSymbol(L".") || takeSymbol(L"!")) {
        node.qualifiers.push_back(std::move(node.name));
        if (atSymbol(L"*") && begin == itemStart_) {
            return star(begin, std::move(node.qualifiers));
        }
        if (token_.kind != TokenKind::Bracketed && token_.kind != TokenKind::Name) {
            failExpression(invalidPoint);
        }
        node.name = anyName(SelectSyntax);
    }
    if (atSymbol(L"(")) {
        failExpression(invalidPoint);
    }
    return made(begin, std::move(node), 1);
}

ExpressionPtr SyntaxParser::star(size_t start, std::vector<Name> qualifiers) {
    advance();
    if (infixOf(token_) != nullptr || beginsComparison()) {
        failExpression(missingOperator);
    }
    return made(start, Star{std::move(qualifiers)}, 1);
}

ExpressionPtr SyntaxParser::call() {
    const size_t begin = start();
    if (at(L"ANY") || at(L"SOME")) {  // they stand before a query, behind a comparison
        failExpression(L"Syntax error");
    }
    if (const std::optional<AggregateFunction> function = aggregateOf(token_.text)) {
        return aggregate(*function, begin);
    }
    Call node{anyName(SelectSyntax), {}};
    advance();
    if (!atSymbol(L")")) {
        do {
            node.arguments.push_back(level(ImpLevel));
        } while (takeSymbol(L","));
    }
    closeOperand();
    const int height = heightOf(node.arguments) + 1;
    return made(begin, std::move(node), height);
}

ExpressionPtr SyntaxParser::aggregate(AggregateFunction function, size_t start) {
    advance();
    advance();
    Aggregate node{function, nullptr};
    if (function != AggregateFunction::Count || !takeSymbol(L"*")) {
        if (atSymbol(L")")) {
            failExpression(wrongArguments);
        }
        node.argument = level(ImpLevel);
    }
    if (atSymbol(L",")) {
        failExpression(wrongArguments);
    }
    closeOperand();
    const int height = node.argument ? node.argument->height + 1 : 1;
    return made(start, std::move(node), height);
}

}  // namespace sg::sql::detail
