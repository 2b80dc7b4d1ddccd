// Where rows come from: FROM's list, joins, queries in place of tables.

#include <algorithm>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/sql/syntax_parser.h"

namespace sg::sql::detail {
namespace {

SourcePtr sourceOf(decltype(Source::node) node, Range range, uint16_t height) {
    auto made = std::make_unique<Source>();
    made->node = std::move(node);
    made->range = range;
    made->height = height;
    return made;
}

// Whether what stands in brackets is a query, perhaps in parentheses.
bool holdsQuery(std::wstring_view bracketed) {
    constexpr std::wstring_view word = L"SELECT";
    while (!bracketed.empty() && (isBlank(bracketed[0]) || bracketed[0] == L'(')) {
        bracketed.remove_prefix(1);
    }
    return bracketed.size() > word.size() && isBlank(bracketed[word.size()]) &&
           equalIgnoringCase(bracketed.substr(0, word.size()), word);
}

}  // namespace

From SyntaxParser::from(SyntaxError otherwise) {
    const size_t begin = start();
    clause_ = otherwise;
    From made;
    do {
        made.sources.push_back(source(otherwise));
    } while (takeSymbol(L","));
    made.database = externalDatabase(otherwise);
    made.range = since(begin);
    return made;
}

// One of FROM's list, with the tables that are joined to it.
SourcePtr SyntaxParser::source(SyntaxError otherwise) {
    const Nesting nesting(*this);
    SourcePtr left = operandOfJoin(otherwise);
    while (atJoin()) {
        left = join(std::move(left), otherwise);
    }
    return left;
}

bool SyntaxParser::atJoin() {
    if (!at(L"INNER") && !at(L"LEFT") && !at(L"RIGHT")) {
        return false;
    }
    return peek().isWord(L"JOIN") || peek().isWord(L"OUTER");
}

SourcePtr SyntaxParser::join(SourcePtr left, SyntaxError otherwise) {
    const Nesting nesting(*this);
    const size_t begin = left->range.offset;
    Join node;
    node.kind = at(L"INNER") ? JoinKind::Inner : at(L"LEFT") ? JoinKind::Left : JoinKind::Right;
    advance();
    if (node.kind != JoinKind::Inner) {
        take(L"OUTER");
    }
    expect(L"JOIN", JoinSyntax);
    node.left = std::move(left);
    node.right = operandOfJoin(otherwise);
    while (atJoin()) {  // a JOIN b JOIN c ON ... ON ...: the inner one first
        node.right = join(std::move(node.right), otherwise);
    }
    expect(L"ON", JoinSyntax);
    const bool outer = std::exchange(inJoin_, true);
    node.condition = expression(JoinSyntax);
    inJoin_ = outer;
    const int height =
        std::max({node.left->height, node.right->height, node.condition->height}) + 1;
    return sourceOf(std::move(node), since(begin), counted(height));
}

// A table or a query with its alias, or a join in parentheses.
SourcePtr SyntaxParser::operandOfJoin(SyntaxError otherwise) {
    if (atSymbol(L"(")) {
        return enclosedSource(otherwise);
    }
    if (token_.kind == TokenKind::Bracketed && holdsQuery(token_.text)) {
        return bracketedQuery(otherwise);
    }
    const size_t begin = start();
    TableReference node{tableName(otherwise), {}};
    node.alias = sourceAlias(otherwise);
    return sourceOf(std::move(node), since(begin), counted(1));
}

std::optional<Name> SyntaxParser::sourceAlias(SyntaxError otherwise) {
    return atName() ? std::optional(name(otherwise)) : alias(otherwise);
}

SourcePtr SyntaxParser::derived(size_t start, QueryPtr query) {
    const uint16_t height = counted(query->height + 1);
    return sourceOf(DerivedTable{std::move(query), {}}, since(start), height);
}

// In parentheses: a query, a join, or a table.
SourcePtr SyntaxParser::enclosedSource(SyntaxError otherwise) {
    const Nesting nesting(*this);
    const size_t begin = start();
    open(otherwise);
    SourcePtr inner;
    if (isQueryWord(token_)) {
        inner = derived(begin, query());
        close(clause_);
    } else {
        inner = source(otherwise);
        if (auto* first = std::get_if<DerivedTable>(&inner->node);
            first != nullptr && !first->alias && at(L"UNION")) {
            inner = derived(begin, unionBehind(std::move(first->query)));
        }
        close(otherwise);
    }
    clause_ = otherwise;
    auto* query = std::get_if<DerivedTable>(&inner->node);
    auto* table = std::get_if<TableReference>(&inner->node);
    if (query != nullptr && !query->alias) {
        query->alias = sourceAlias(otherwise);
    } else if (table != nullptr && !table->alias) {
        table->alias = sourceAlias(otherwise);
    }
    inner->range = since(begin);
    return inner;
}

// [SELECT ...]. AS alias
SourcePtr SyntaxParser::bracketedQuery(SyntaxError otherwise) {
    const size_t begin = start();
    QueryPtr made = queryInBrackets();
    clause_ = otherwise;
    takeSymbol(L".");
    SourcePtr source = derived(begin, std::move(made));
    std::get<DerivedTable>(source->node).alias = sourceAlias(otherwise);
    source->range = since(begin);
    return source;
}

// Reads what the present token has in its brackets as if it stood in parentheses.
QueryPtr SyntaxParser::queryInBrackets() {
    const Range brackets = {static_cast<uint32_t>(token_.offset),
                            static_cast<uint32_t>(token_.length)};
    const std::wstring_view outerText = std::exchange(text_, text_.substr(0, brackets.end() - 1));
    const jet::detail::ExpressionLexer inside(text_, jet::detail::LexerUse::Statement,
                                              brackets.offset + 1);
    const jet::detail::ExpressionLexer outerLexer = std::exchange(lexer_, inside);
    std::vector<Token> outerAhead = std::exchange(ahead_, {});
    const bool outerBehindOperand = std::exchange(behindOperand_, false);
    const bool outerBehindPoint = std::exchange(behindPoint_, false);
    token_ = Token();
    advance();
    QueryPtr made = query();
    if (!atEnd()) {
        fail(clause_);
    }
    text_ = outerText;
    lexer_ = outerLexer;
    ahead_ = std::move(outerAhead);
    behindOperand_ = outerBehindOperand;
    behindPoint_ = outerBehindPoint;
    token_.offset = brackets.offset;
    token_.length = brackets.length;
    advance();
    return made;
}

}  // namespace sg::sql::detail
