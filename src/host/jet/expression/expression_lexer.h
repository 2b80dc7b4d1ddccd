#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/jet/values/value.h"

namespace sg::jet::detail {

enum class TokenKind : uint8_t {
    End,
    Literal,    // `value`
    Name,       // `text`; a word, which may be an operator's or a constant's
    Bracketed,  // `text`; [a name]
    Symbol,     // `text`; an operator or punctuation
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::wstring text;
    Value value;
    size_t offset = 0;  // of it in what is cut, and how long it is there
    size_t length = 0;

    bool isSymbol(std::wstring_view symbol) const {
        return kind == TokenKind::Symbol && text == symbol;
    }
    // Ignoring case.
    bool isWord(std::wstring_view word) const;
};

// Throws ExpressionSyntax: `what` is wrong in `expression`.
[[noreturn]] void throwSyntax(std::wstring what, std::wstring_view expression);

// What is cut: statements have "?" and ";" too, and take every other character for a symbol that
// somebody else will complain about; their brackets may hold a whole query, with brackets in it.
enum class LexerUse : uint8_t { Expression, Statement };

// Cuts an expression into tokens, one at a time.
class ExpressionLexer {
  public:
    // From `start` on.
    explicit ExpressionLexer(std::wstring_view text, LexerUse use = LexerUse::Expression,
                             size_t start = 0)
        : text_(text), use_(use), at_(start) {}

    // The next token; an End token at the end, as often as asked. `behindOperand` tells that an
    // operator must follow, so that "&" is one and doesn't begin "&HFF". Throws ExpressionSyntax, or
    // InvalidBracketing for a "[" without its "]", and then stands behind what was wrong as far as
    // that has an end.
    Token next(bool behindOperand);

    // Where the next token, or blanks before it, begin.
    size_t place() const { return at_; }

  private:
    Token cut(bool behindOperand);
    Token quoted(wchar_t quote);
    Token date();
    Token bracketed();
    size_t endOfBrackets() const;
    Token number();
    Token radixNumber(unsigned base);
    Token word();
    Token symbol();
    wchar_t at(size_t offset) const {
        return at_ + offset < text_.size() ? text_[at_ + offset] : L'\0';
    }
    void skipDigits();

    std::wstring_view text_;
    LexerUse use_;
    size_t at_;
};

}  // namespace sg::jet::detail
