#include "host/jet/expression/expression_lexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

bool beginsWord(wchar_t c) {
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_' ||
           (c >= 0x80 && !isBlank(c));
}

// The digit's worth, at least `base` when it is none.
unsigned digitOf(wchar_t c, unsigned base) {
    if (isDigit(c)) {
        return static_cast<unsigned>(c - L'0');
    }
    const wchar_t upper = toUpper(c);
    return upper >= L'A' && upper <= L'F' ? static_cast<unsigned>(upper - L'A') + 10 : base;
}

}  // namespace

bool Token::isWord(std::wstring_view word) const {
    return kind == TokenKind::Name && equalIgnoringCase(text, word);
}

void throwSyntax(std::wstring what, std::wstring_view expression) {
    throw Error(ExpressionSyntax, {std::move(what), std::wstring(expression)});
}

Token ExpressionLexer::next(bool behindOperand) {
    while (at_ < text_.size() && isBlank(text_[at_])) {
        ++at_;
    }
    const size_t start = at_;
    Token token = at_ == text_.size() ? Token() : cut(behindOperand);
    token.offset = start;
    token.length = at_ - start;
    return token;
}

Token ExpressionLexer::cut(bool behindOperand) {
    const wchar_t c = text_[at_];
    switch (c) {
        case L'"':
        case L'\'':
            return quoted(c);
        case L'#':
            return date();
        case L'[':
            return bracketed();
        default:
            break;
    }
    if (isDigit(c) || (c == L'.' && isDigit(at(1)) && !behindOperand)) {
        return number();
    }
    if (c == L'&' && !behindOperand) {
        const wchar_t radix = toUpper(at(1));
        if (radix == L'H' || radix == L'O') {
            return radixNumber(radix == L'H' ? 16 : 8);
        }
    }
    return beginsWord(c) ? word() : symbol();
}

Token ExpressionLexer::quoted(wchar_t quote) {
    std::wstring content;
    for (++at_; at_ < text_.size(); ++at_) {
        if (text_[at_] != quote) {
            content += text_[at_];
        } else if (at(1) == quote) {
            content += quote;
            ++at_;
        } else {
            ++at_;
            return {TokenKind::Literal, {}, std::move(content)};
        }
    }
    throwSyntax(L"Syntax error in string", text_);
}

Token ExpressionLexer::date() {
    const size_t start = at_ + 1;
    const size_t end = std::min(text_.find(L'#', start), text_.size());
    at_ = std::min(end + 1, text_.size());
    Date date;
    if (end == text_.size() || !parseDate(trimmed(text_.substr(start, end - start)), date)) {
        throwSyntax(L"Syntax error in date", text_);
    }
    return {TokenKind::Literal, {}, date};
}

// Where the "]" stands that ends the name which begins here; the text's end when none does.
size_t ExpressionLexer::endOfBrackets() const {
    size_t depth = 1;
    for (size_t end = at_ + 1; end < text_.size(); ++end) {
        if (text_[end] == L'[' && use_ == LexerUse::Statement) {
            ++depth;
        } else if (text_[end] == L']' && --depth == 0) {
            return end;
        }
    }
    return text_.size();
}

Token ExpressionLexer::bracketed() {
    const size_t end = endOfBrackets();
    if (end == text_.size() || end == at_ + 1) {
        throw Error(InvalidBracketing, {std::wstring(text_.substr(at_))});
    }
    std::wstring name(text_.substr(at_ + 1, end - at_ - 1));
    at_ = end + 1;
    return {TokenKind::Bracketed, std::move(name), {}};
}

void ExpressionLexer::skipDigits() {
    while (isDigit(at(0))) {
        ++at_;
    }
}

// An Integer, a Long, or a Double for what has a fraction, an exponent or more digits.
Token ExpressionLexer::number() {
    const size_t start = at_;
    bool whole = true;
    skipDigits();
    if (at(0) == L'.') {
        whole = false;
        ++at_;
        skipDigits();
    }
    if (toUpper(at(0)) == L'E') {
        const size_t sign = at(1) == L'+' || at(1) == L'-' ? 1 : 0;
        if (isDigit(at(1 + sign))) {
            whole = false;
            at_ += 1 + sign;
            skipDigits();
        }
    }
    const std::wstring_view wide = text_.substr(start, at_ - start);
    const std::string digits(wide.begin(), wide.end());
    double value = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (beginsWord(at(0)) || at(0) == L'.' || read.ec != std::errc() || !std::isfinite(value)) {
        throwSyntax(L"Syntax error in number", text_);
    }
    if (whole && value <= std::numeric_limits<int16_t>::max()) {
        return {TokenKind::Literal, {}, static_cast<int16_t>(value)};
    }
    if (whole && value <= std::numeric_limits<int32_t>::max()) {
        return {TokenKind::Literal, {}, static_cast<int32_t>(value)};
    }
    return {TokenKind::Literal, {}, value};
}

// Of 16 or 32 bits, whose highest is the sign: &HFFFF is -1, &H10000 65536.
Token ExpressionLexer::radixNumber(unsigned base) {
    at_ += 2;
    uint64_t value = 0;
    const size_t start = at_;
    for (; digitOf(at(0), base) < base; ++at_) {
        value = value * base + digitOf(at(0), base);
        if (value > std::numeric_limits<uint32_t>::max()) {
            throwSyntax(L"Syntax error in number", text_);
        }
    }
    if (at_ == start || isDigit(at(0)) || beginsWord(at(0))) {
        throwSyntax(L"Syntax error in number", text_);
    }
    if (value <= std::numeric_limits<uint16_t>::max()) {
        return {TokenKind::Literal, {}, static_cast<int16_t>(static_cast<uint16_t>(value))};
    }
    return {TokenKind::Literal, {}, static_cast<int32_t>(static_cast<uint32_t>(value))};
}

// With the "$" that the text functions' names may end with.
Token ExpressionLexer::word() {
    const size_t start = at_;
    while (beginsWord(at(0)) || isDigit(at(0))) {
        ++at_;
    }
    if (at(0) == L'$') {
        ++at_;
    }
    return {TokenKind::Name, std::wstring(text_.substr(start, at_ - start)), {}};
}

Token ExpressionLexer::symbol() {
    const std::wstring_view two = text_.substr(at_, 2);
    size_t length = 1;
    if (two == L"<>" || two == L"<=" || two == L">=") {
        length = 2;
    } else if (use_ == LexerUse::Expression &&
               std::wstring_view(L"+-*/\\^&=<>(),.!").find(two[0]) == std::wstring_view::npos) {
        throwSyntax(L"Syntax error", text_);
    }
    Token token{TokenKind::Symbol, std::wstring(two.substr(0, length)), {}};
    at_ += length;
    return token;
}

}  // namespace sg::jet::detail
