#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/export.h"
#include "host/lisp/compiler.h"
#include "host/lisp/interpreter.h"

namespace sg::lisp {

// Reads forms from a text, one at a time.
//
// Literals: integers (those beyond 32 bits become reals), reals (a digit on both sides of the
// point; the point and what follows may be missing before an exponent), strings with the escapes
// \\ \" \e \n \r \t \nnn (octal) and \U+hhhh, symbols (upper-cased), lists, dotted pairs, 'quoted
// forms. Comments run from ; to the end of the line, or from ;| to |;.
class Reader {
  public:
    // `file` names the text in error messages and may be empty; `lines` takes the line of every
    // list and may be null. Both must outlive the reader.
    Reader(Interpreter& in, std::wstring_view text, const std::wstring& file = {},
           LineMap* lines = nullptr)
        : in_(in), text_(text), file_(file), lines_(lines) {}

    // Skips blanks and comments; false at the end of the text.
    bool more();
    // Reads the next form. Throws "malformed list on input", "malformed string on input",
    // "misplaced dot on input" or "extra right paren on input", with file and line where a file was
    // named.
    Value read();

    // The line at which the next form begins once more() has found it, from 1.
    uint32_t nextLine() const { return line_; }
    size_t position() const { return at_; }

  private:
    [[noreturn]] void fail(const std::wstring& what, uint32_t line, const std::wstring& hint);
    Value readList();
    Value readString();
    Value readToken();
    wchar_t readEscape(uint32_t startLine);
    void advance();

    Interpreter& in_;
    std::wstring_view text_;
    std::wstring file_;
    LineMap* lines_;
    size_t at_ = 0;
    uint32_t line_ = 1;
};

// True when `text` ends inside a list, a string or a block comment, so that more lines must follow.
SG_API bool isIncomplete(std::wstring_view text);

// A token as a number; nil when it is none.
Value parseNumber(std::wstring_view token);

}  // namespace sg::lisp
