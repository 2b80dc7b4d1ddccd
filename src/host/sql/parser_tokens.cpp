// Tokens, names and errors of the parser.

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/sql/syntax_parser.h"
#include "host/sql/words.h"

namespace sg::sql::detail {
namespace {

constexpr int maxNesting = 300;

bool isText(const Token& token) {
    return token.kind == TokenKind::Literal && std::holds_alternative<std::wstring>(token.value);
}

// Whether an operator must follow.
bool endsOperand(const Token& token) {
    switch (token.kind) {
        case TokenKind::Literal:
        case TokenKind::Bracketed:
            return true;
        case TokenKind::Name:
            return !isReserved(token.text);
        case TokenKind::Symbol:
            return token.text == L")" || token.text == L"?";
        default:
            return false;
    }
}

// Words that end the expression before them.
bool endsExpression(const Token& token) {
    static constexpr std::wstring_view words[] = {
        L"AS",    L"ASC",   L"DESC",   L"FROM", L"GROUP", L"HAVING", L"INTO",  L"ON",
        L"ORDER", L"PIVOT", L"SELECT", L"SET",  L"UNION", L"VALUES", L"WHERE", L"WITH"};
    return token.isSymbol(L",") || token.isSymbol(L";") || token.kind == TokenKind::End ||
           std::any_of(std::begin(words), std::end(words),
                       [&](std::wstring_view word) { return token.isWord(word); });
}

bool beginsJoin(const Token& token) {
    return token.isWord(L"INNER") || token.isWord(L"LEFT") || token.isWord(L"RIGHT");
}

// The next token, or a literal for one that is wrong; the end behind an open quote or bracket.
Token tolerated(jet::detail::ExpressionLexer& lexer, bool behindOperand, size_t end) {
    const size_t begin = lexer.place();
    try {
        return lexer.next(behindOperand);
    } catch (const jet::Error&) {
        Token token;
        token.offset = end;
        if (lexer.place() > begin && lexer.place() < end) {
            token.kind = TokenKind::Literal;
            token.offset = begin;
        }
        return token;
    }
}

// Where the expression ends that begins at `start`, as far as a wrong one tells.
size_t endOfExpression(std::wstring_view text, size_t start) {
    jet::detail::ExpressionLexer lexer(text, jet::detail::LexerUse::Statement, start);
    int depth = 0;
    Token last;
    while (true) {
        Token token = tolerated(lexer, endsOperand(last), text.size());
        if (beginsJoin(last) && depth == 0 && (token.isWord(L"JOIN") || token.isWord(L"OUTER"))) {
            return last.offset;
        }
        if ((depth == 0 && endsExpression(token)) || token.kind == TokenKind::End) {
            return token.offset;
        }
        if (token.isSymbol(L"(")) {
            ++depth;
        } else if (token.isSymbol(L")") && depth-- == 0) {
            return token.offset;
        }
        last = std::move(token);
    }
}

}  // namespace

SyntaxParser::Nesting::Nesting(SyntaxParser& p) : parser(p) {
    if (parser.nesting_ == maxNesting) {
        parser.fail(TooComplex);
    }
    ++parser.nesting_;
}

uint16_t SyntaxParser::counted(int height) {
    if (height > maxTreeHeight) {
        fail(TooComplex);
    }
    highest_ = std::max(highest_, height);
    return static_cast<uint16_t>(height);
}

// ---- Tokens

Token SyntaxParser::cut() {
    const size_t begin = lexer_.place();
    try {
        Token token = lexer_.next(behindOperand_);
        behindOperand_ = endsOperand(token) || (behindPoint_ && token.kind == TokenKind::Name);
        behindPoint_ = token.isSymbol(L".") || token.isSymbol(L"!");
        return token;
    } catch (const jet::Error& error) {
        if (error.code() != jet::ExpressionSyntax) {
            throw;
        }
        const size_t from = expressionStart_.value_or(begin);
        throw jet::Error(jet::ExpressionSyntax,
                         {error.names().at(0), std::wstring(expressionFrom(from))});
    }
}

void SyntaxParser::advance() {
    lastEnd_ = token_.offset + token_.length;
    if (ahead_.empty()) {
        token_ = cut();
    } else {
        token_ = std::move(ahead_.front());
        ahead_.erase(ahead_.begin());
    }
}

const Token& SyntaxParser::peek(size_t distance) {
    while (ahead_.size() < distance) {
        ahead_.push_back(cut());
    }
    return ahead_[distance - 1];
}

bool SyntaxParser::take(std::wstring_view word) {
    if (!at(word)) {
        return false;
    }
    advance();
    return true;
}

bool SyntaxParser::takeSymbol(std::wstring_view symbol) {
    if (!atSymbol(symbol)) {
        return false;
    }
    advance();
    return true;
}

void SyntaxParser::expect(std::wstring_view word, SyntaxError otherwise) {
    if (!take(word)) {
        fail(otherwise);
    }
}

void SyntaxParser::expectSymbol(std::wstring_view symbol, SyntaxError otherwise) {
    if (!takeSymbol(symbol)) {
        fail(otherwise);
    }
}

void SyntaxParser::open(SyntaxError otherwise) {
    expectSymbol(L"(", otherwise);
    ++openParentheses_;
}

void SyntaxParser::close(SyntaxError otherwise) {
    expectSymbol(L")", otherwise);
    --openParentheses_;
}

Range SyntaxParser::since(size_t start) const {
    return {static_cast<uint32_t>(start), static_cast<uint32_t>(lastEnd_ - start)};
}

// ---- Errors

void SyntaxParser::fail(SyntaxError code) const {
    constexpr size_t longest = 40;
    std::wstring detail = L"at the end";
    if (!atEnd()) {
        const size_t length = std::min(token_.length, longest);
        detail = L"at character " + std::to_wstring(token_.offset + 1) + L": " +
                 std::wstring(text_.substr(token_.offset, length));
    }
    throw jet::Error(code, {}, {.detail = std::move(detail)});
}

std::wstring_view SyntaxParser::expressionFrom(size_t begin) const {
    return trimmed(text_.substr(begin, endOfExpression(text_, begin) - begin));
}

void SyntaxParser::failExpression(std::wstring what) const {
    const size_t begin = expressionStart_.value_or(token_.offset);
    throw jet::Error(jet::ExpressionSyntax, {std::move(what), std::wstring(expressionFrom(begin))});
}

// ---- Names

bool SyntaxParser::atName() const {
    return token_.kind == TokenKind::Bracketed ||
           (token_.kind == TokenKind::Name && !isReserved(token_.text));
}

Name SyntaxParser::anyName(SyntaxError otherwise) {
    if (token_.kind != TokenKind::Bracketed && token_.kind != TokenKind::Name) {
        fail(otherwise);
    }
    Name made{std::move(token_.text), {}, token_.kind == TokenKind::Bracketed};
    if (made.text.find(L'[') != std::wstring::npos) {
        throw jet::Error(jet::InvalidBracketing, {L"[" + made.text + L"]"});
    }
    const size_t begin = start();
    advance();
    made.range = since(begin);
    return made;
}

Name SyntaxParser::name(SyntaxError otherwise) {
    if (!atName()) {
        fail(otherwise);
    }
    return anyName(otherwise);
}

std::vector<Name> SyntaxParser::names(SyntaxError otherwise) {
    std::vector<Name> all;
    expectSymbol(L"(", otherwise);
    do {
        all.push_back(name(otherwise));
    } while (takeSymbol(L","));
    expectSymbol(L")", otherwise);
    return all;
}

ColumnName SyntaxParser::columnName(SyntaxError otherwise) {
    ColumnName made{{}, name(otherwise)};
    while (takeSymbol(L".") || takeSymbol(L"!")) {
        made.qualifiers.push_back(std::exchange(made.name, {}));
        made.name = anyName(otherwise);
    }
    return made;
}

TableName SyntaxParser::tableName(SyntaxError otherwise) {
    const size_t begin = start();
    TableName made{std::nullopt, name(otherwise), {}};
    if (takeSymbol(L".") || takeSymbol(L"!")) {
        made.database = std::move(made.name);
        made.name = anyName(otherwise);
    }
    made.range = since(begin);
    return made;
}

std::optional<Name> SyntaxParser::alias(SyntaxError otherwise) {
    return take(L"AS") ? std::optional(name(otherwise)) : std::nullopt;
}

// IN 'path', IN 'path' 'connect', IN 'path' [connect].
std::optional<ExternalDatabase> SyntaxParser::externalDatabase(SyntaxError otherwise) {
    if (!at(L"IN")) {
        return std::nullopt;
    }
    const size_t begin = start();
    advance();
    if (!isText(token_) && token_.kind != TokenKind::Bracketed) {
        fail(otherwise);
    }
    ExternalDatabase made;
    if (isText(token_)) {
        made.path = std::get<std::wstring>(std::move(token_.value));
        advance();
    }
    if (token_.kind == TokenKind::Bracketed) {
        made.connect = std::move(token_.text);
        advance();
    } else if (isText(token_)) {
        made.connect = std::get<std::wstring>(std::move(token_.value));
        advance();
    }
    made.range = since(begin);
    return made;
}

}  // namespace sg::sql::detail
