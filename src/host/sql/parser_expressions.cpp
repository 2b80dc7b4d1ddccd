// Operators of the parser: what binds operands together.

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/sql/made.h"
#include "host/sql/syntax_parser.h"
#include "host/sql/words.h"

namespace sg::sql::detail {
namespace {

constexpr const wchar_t* missingOperator = L"Syntax error (missing operator)";
constexpr const wchar_t* missingList = L"In operator without ()";

}  // namespace

// ---- Whole expressions

// Whether the present token can begin an operand. A reserved word can where it is a function's
// name, as Left is, or begins an operand of its own.
bool SyntaxParser::mayBeginOperand() {
    switch (token_.kind) {
        case TokenKind::Literal:
        case TokenKind::Bracketed:
            return true;
        case TokenKind::Name:
            return !isReserved(token_.text) || constantOf(token_.text) || at(L"EXISTS") ||
                   ((at(L"LEFT") || at(L"RIGHT") || at(L"ASC")) && peek().isSymbol(L"("));
        case TokenKind::Symbol:
            return atSymbol(L"(") || atSymbol(L"?");
        default:
            return false;
    }
}

// False where a clause simply lacks its expression.
bool SyntaxParser::mayBeginExpression() {
    if (token_.kind == TokenKind::Symbol) {
        return !atSymbol(L",") && !atSymbol(L";") && !atSymbol(L")");
    }
    return at(L"NOT") || mayBeginOperand();
}

ExpressionPtr SyntaxParser::expression(SyntaxError missing) {
    if (!mayBeginExpression()) {
        fail(missing);
    }
    const std::optional<size_t> outer = std::exchange(expressionStart_, start());
    ExpressionPtr made = level(ImpLevel);
    checkBehindExpression();
    expressionStart_ = outer;
    return made;
}

void SyntaxParser::checkBehindExpression() {
    if (atSymbol(L")") && openParentheses_ == 0) {
        const size_t begin = *expressionStart_;
        throw jet::Error(jet::ExpressionSyntax,
                         {L"Extra )", std::wstring(text_.substr(begin, start() + 1 - begin))});
    }
    if (at(L"IN") && !inJoin_) {
        failExpression(missingList);
    }
    if (!atJoin() && !at(L"ON") && mayBeginOperand()) {
        failExpression(missingOperator);
    }
}

std::vector<ExpressionPtr> SyntaxParser::expressions(SyntaxError missing) {
    std::vector<ExpressionPtr> all;
    do {
        all.push_back(expression(missing));
    } while (takeSymbol(L","));
    return all;
}

// ---- Operators

// `token` is `distance` tokens behind the present one. An IN 'file' is a clause.
bool SyntaxParser::isComparisonWord(const Token& token, size_t distance) {
    return token.isWord(L"LIKE") || token.isWord(L"ALIKE") || token.isWord(L"BETWEEN") ||
           (token.isWord(L"IN") && peek(distance + 1).kind != TokenKind::Literal);
}

// Whether the present token is that of a comparison, behind its left side.
bool SyntaxParser::beginsComparison() {
    if (token_.kind == TokenKind::Symbol) {
        const Infix* op = infixOf(token_);
        return op != nullptr && op->level == ComparisonLevel;
    }
    return at(L"IS") || (at(L"NOT") ? isComparisonWord(peek(), 1) : isComparisonWord(token_, 0));
}

// Operators that bind at least as tightly as `least`.
ExpressionPtr SyntaxParser::level(int least) {
    const Nesting nesting(*this);
    ExpressionPtr left = prefix();
    while (true) {
        if (least <= ComparisonLevel && beginsComparison()) {
            left = comparison(std::move(left));
            continue;
        }
        const Infix* op = infixOf(token_);
        if (op == nullptr || op->level < least) {
            return left;
        }
        advance();
        left = madeBinary(op->op, std::move(left), level(op->level + 1));
    }
}

ExpressionPtr SyntaxParser::madeBinary(BinaryOperator op, ExpressionPtr left, ExpressionPtr right) {
    const size_t begin = left->range.offset;
    const int height = std::max(left->height, right->height) + 1;
    return made(begin, Binary{op, std::move(left), std::move(right)}, height);
}

ExpressionPtr SyntaxParser::prefix() {
    const size_t begin = start();
    if (take(L"NOT")) {
        ExpressionPtr operand = level(NotLevel);
        const int height = operand->height + 1;
        return made(begin, Unary{UnaryOperator::Not, std::move(operand)}, height);
    }
    if (takeSymbol(L"-")) {
        ExpressionPtr operand = level(SignLevel);
        const int height = operand->height + 1;
        return made(begin, Unary{UnaryOperator::Negate, std::move(operand)}, height);
    }
    if (takeSymbol(L"+")) {
        ExpressionPtr operand = level(SignLevel);
        operand->range = since(begin);
        return operand;
    }
    return operand();
}

// One comparison behind its left side.
ExpressionPtr SyntaxParser::comparison(ExpressionPtr left) {
    if (take(L"IS")) {
        return isNull(std::move(left));
    }
    if (token_.kind == TokenKind::Name) {
        return likeBetweenOrIn(std::move(left));
    }
    const Infix* op = infixOf(token_);
    advance();
    return compared(*op, std::move(left));
}

ExpressionPtr SyntaxParser::likeBetweenOrIn(ExpressionPtr left) {
    const bool negated = take(L"NOT");
    if (take(L"BETWEEN")) {
        return between(std::move(left), negated);
    }
    if (take(L"IN")) {
        return in(std::move(left), negated);
    }
    const bool ansi = at(L"ALIKE");
    advance();
    const size_t begin = left->range.offset;
    ExpressionPtr pattern = level(ConcatenateLevel);
    const int height = std::max(left->height, pattern->height) + 1;
    return made(begin, Like{std::move(left), std::move(pattern), negated, ansi}, height);
}

// Behind a comparison's symbol: a value, or ANY, SOME or ALL with a query.
ExpressionPtr SyntaxParser::compared(const Infix& op, ExpressionPtr left) {
    const bool any = at(L"ANY") || at(L"SOME");
    if ((!any && !at(L"ALL")) || !peek().isSymbol(L"(")) {
        return madeBinary(op.op, std::move(left), level(ConcatenateLevel));
    }
    advance();
    const size_t begin = left->range.offset;
    QueryPtr query = subquery();
    const int height = std::max(left->height, query->height) + 1;
    return made(begin,
                Quantified{std::move(left), op.op, any ? Quantifier::Any : Quantifier::All,
                           std::move(query)},
                height);
}

ExpressionPtr SyntaxParser::isNull(ExpressionPtr left) {
    const bool negated = take(L"NOT");
    if (!take(L"NULL")) {
        failExpression(L"Syntax error");
    }
    const size_t begin = left->range.offset;
    const int height = left->height + 1;
    return made(begin, IsNull{std::move(left), negated}, height);
}

ExpressionPtr SyntaxParser::between(ExpressionPtr left, bool negated) {
    ExpressionPtr low = level(ConcatenateLevel);
    if (!take(L"AND")) {
        failExpression(L"Between operator without And");
    }
    ExpressionPtr high = level(ConcatenateLevel);
    const size_t begin = left->range.offset;
    const int height = std::max({left->height, low->height, high->height}) + 1;
    return made(begin, Between{std::move(left), std::move(low), std::move(high), negated}, height);
}

ExpressionPtr SyntaxParser::in(ExpressionPtr left, bool negated) {
    if (!atSymbol(L"(")) {
        failExpression(missingList);
    }
    const size_t begin = left->range.offset;
    int height = left->height;
    In node{std::move(left), {}, nullptr, negated};
    if (isQueryWord(peek())) {
        node.query = subquery();
        height = std::max<int>(height, node.query->height);
        return made(begin, std::move(node), height + 1);
    }
    advance();
    do {
        node.list.push_back(level(ImpLevel));
        height = std::max<int>(height, node.list.back()->height);
    } while (takeSymbol(L","));
    auto* first = std::get_if<Subquery>(&node.list.front()->node);
    if (first != nullptr && node.list.size() == 1 && at(L"UNION")) {
        node.query = unionBehind(std::move(first->query));
        node.list.clear();
        height = std::max<int>(height, node.query->height);
    }
    closeOperand();
    return made(begin, std::move(node), height + 1);
}

}  // namespace sg::sql::detail
