#include "host/lisp/reader.h"

#include <fmt/xchar.h>

#include <charconv>
#include <string>
#include <vector>

#include "base/text.h"
#include "host/lisp/text/numbers.h"

namespace sg::lisp {
namespace {

bool isDelimiter(wchar_t c) {
    return isBlank(c) || c == L'(' || c == L')' || c == L'\'' || c == L'"' || c == L';' || c == 0 ||
           c == 0x1A;
}

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

int hexDigit(wchar_t c) {
    if (isDigit(c)) return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

}  // namespace

Value parseNumber(std::wstring_view token) {
    size_t at = 0;
    if (at < token.size() && (token[at] == L'+' || token[at] == L'-')) ++at;
    const size_t firstDigit = at;
    while (at < token.size() && isDigit(token[at]))
        ++at;
    if (at == firstDigit) return Value::nil();
    const bool integer = at == token.size();
    if (at < token.size() && token[at] == L'.') {
        ++at;
        while (at < token.size() && isDigit(token[at]))
            ++at;
    }
    if (at < token.size() && (token[at] == L'e' || token[at] == L'E')) {
        ++at;
        if (at < token.size() && (token[at] == L'+' || token[at] == L'-')) ++at;
        const size_t exponent = at;
        while (at < token.size() && isDigit(token[at]))
            ++at;
        if (at == exponent) return Value::nil();
    }
    if (at != token.size()) return Value::nil();
    if (integer) {
        std::string ascii(token.begin(), token.end());
        if (ascii[0] == '+') ascii.erase(0, 1);
        int32_t i = 0;
        const auto result = std::from_chars(ascii.data(), ascii.data() + ascii.size(), i);
        if (result.ec == std::errc()) return Value::integer(i);
    }
    const double magnitude = scanReal(token.substr(firstDigit)).value;
    return Value::real(token[0] == L'-' ? -magnitude : magnitude);
}

void Reader::advance() {
    if (text_[at_] == L'\n') ++line_;
    ++at_;
}

bool Reader::more() {
    while (at_ < text_.size()) {
        const wchar_t c = text_[at_];
        // Ctrl-Z and zero bytes end or pad files of old editors.
        if (isBlank(c) || c == 0 || c == 0x1A) {
            advance();
        } else if (c == L';' && at_ + 1 < text_.size() && text_[at_ + 1] == L'|') {
            at_ += 2;
            while (at_ < text_.size() &&
                   !(text_[at_] == L'|' && at_ + 1 < text_.size() && text_[at_ + 1] == L';')) {
                advance();
            }
            at_ = std::min(at_ + 2, text_.size());
        } else if (c == L';') {
            while (at_ < text_.size() && text_[at_] != L'\n')
                ++at_;
        } else {
            return true;
        }
    }
    return false;
}

void Reader::fail(const std::wstring& what, uint32_t line, const std::wstring& hint) {
    if (file_.empty()) in_.fail(what);
    in_.fail(fmt::format(L"{}: {}:{}: {}", what, file_, line, hint));
}

Value Reader::read() {
    if (!more()) fail(L"malformed list on input", line_, L"the text ends where a form is expected");
    const uint32_t startLine = line_;
    const wchar_t c = text_[at_];
    if (c == L'\'') {
        in_.checkStack();
        ++at_;
        if (!more() || text_[at_] == L')') {
            fail(L"malformed list on input", startLine, L"a form is expected after \"'\"");
        }
        const Value quoted = read();
        const Value form = in_.list({in_.symbol(L"QUOTE"), quoted});
        if (lines_ != nullptr) lines_->emplace(form.asCons(), startLine);
        return form;
    }
    if (c == L'(') {
        const Value list = readList();
        return list;
    }
    if (c == L')') {
        ++at_;
        fail(L"extra right paren on input", startLine, L"this \")\" closes no list");
    }
    if (c == L'"') return readString();
    return readToken();
}

// Lists nest on a vector, not on the native stack, so that hostile depth costs memory only.
Value Reader::readList() {
    struct Open {
        Value head;
        Cons* last = nullptr;
        uint32_t line = 0;
        int afterDot = -1;  // items read after a dot; -1: no dot yet
        int quotes = 0;     // quotes that wait for this list's end
    };
    std::vector<Open> stack;
    int pendingQuotes = 0;
    const auto append = [&](Value item, int quotes) {
        for (; quotes > 0; --quotes)
            item = in_.list({in_.symbol(L"QUOTE"), item});
        Open& open = stack.back();
        if (open.afterDot >= 0) {
            if (open.last == nullptr || ++open.afterDot > 1) {
                fail(L"misplaced dot on input", line_, L"one item is expected after \".\"");
            }
            open.last->cdr = item;
            return;
        }
        const Value cell = in_.cons(item, Value::nil());
        if (open.last == nullptr) {
            open.head = cell;
            if (lines_ != nullptr) lines_->emplace(cell.asCons(), open.line);
        } else {
            open.last->cdr = cell;
        }
        open.last = cell.asCons();
    };
    for (;;) {
        if (!more()) {
            const uint32_t line = stack.empty() ? line_ : stack.back().line;
            fail(L"malformed list on input", line_,
                 fmt::format(L"the text ends, \")\" is expected for the \"(\" in line {}", line));
        }
        const wchar_t c = text_[at_];
        if (c == L'(') {
            ++at_;
            stack.push_back({{}, nullptr, line_, -1, pendingQuotes});
            pendingQuotes = 0;
        } else if (c == L')') {
            ++at_;
            if (pendingQuotes > 0) {
                fail(L"malformed list on input", line_, L"a form is expected after \"'\"");
            }
            const Open done = stack.back();
            if (done.afterDot == 0) {
                fail(L"misplaced dot on input", line_, L"an item is expected after \".\"");
            }
            stack.pop_back();
            if (stack.empty()) return done.head;
            append(done.head, done.quotes);
        } else if (c == L'\'') {
            ++at_;
            ++pendingQuotes;
        } else if (c == L'"') {
            append(readString(), pendingQuotes);
            pendingQuotes = 0;
        } else if (c == L'.' && (at_ + 1 >= text_.size() || isDelimiter(text_[at_ + 1]))) {
            ++at_;
            Open& open = stack.back();
            if (open.last == nullptr || open.afterDot >= 0 || pendingQuotes > 0) {
                fail(L"misplaced dot on input", line_, L"\".\" stands between two items");
            }
            open.afterDot = 0;
        } else {
            append(readToken(), pendingQuotes);
            pendingQuotes = 0;
        }
    }
}

wchar_t Reader::readEscape(uint32_t startLine) {
    if (at_ >= text_.size()) {
        fail(L"malformed string on input", startLine, L"the text ends inside the string");
    }
    const wchar_t c = text_[at_];
    switch (c) {
        case L'n':
            ++at_;
            return L'\n';
        case L'r':
            ++at_;
            return L'\r';
        case L't':
            ++at_;
            return L'\t';
        case L'e':
            ++at_;
            return 27;
        default:
            break;
    }
    if (c >= L'0' && c <= L'7') {
        int code = 0;
        for (int i = 0; i < 3 && at_ < text_.size() && text_[at_] >= L'0' && text_[at_] <= L'7';
             ++i) {
            code = code * 8 + (text_[at_++] - L'0');
        }
        return static_cast<wchar_t>(code);
    }
    if ((c == L'U' || c == L'u') && at_ + 5 < text_.size() && text_[at_ + 1] == L'+') {
        int code = 0;
        size_t i = 0;
        for (; i < 4 && hexDigit(text_[at_ + 2 + i]) >= 0; ++i) {
            code = code * 16 + hexDigit(text_[at_ + 2 + i]);
        }
        if (i == 4) {
            at_ += 6;
            return static_cast<wchar_t>(code);
        }
    }
    advance();
    return c;  // \\ and \", and any other character, which then stands for itself
}

Value Reader::readString() {
    const uint32_t startLine = line_;
    ++at_;
    std::wstring out;
    for (;;) {
        if (at_ >= text_.size()) {
            fail(L"malformed string on input", line_,
                 fmt::format(L"the text ends, '\"' is expected for the string that begins in "
                             L"line {}",
                             startLine));
        }
        const wchar_t c = text_[at_];
        if (c == L'"') {
            ++at_;
            return in_.string(out);
        }
        if (c == L'\\') {
            ++at_;
            out += readEscape(startLine);
        } else if (c == L'\r' && at_ + 1 < text_.size() && text_[at_ + 1] == L'\n') {
            ++at_;  // a line end in a string is one character, however the file ends its lines
        } else {
            out += c;
            advance();
        }
    }
}

Value Reader::readToken() {
    const size_t start = at_;
    while (at_ < text_.size() && !isDelimiter(text_[at_]))
        ++at_;
    const std::wstring_view token = text_.substr(start, at_ - start);
    const Value number = parseNumber(token);
    if (number) return number;
    if (token[0] == L'.') {
        fail(L"misplaced dot on input", line_, L"a number needs a digit before its point");
    }
    const std::wstring name = upperCased(token);
    if (name == L"NIL") return Value::nil();
    return in_.symbol(name);
}

bool isIncomplete(std::wstring_view text) {
    int depth = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t c = text[at];
        if (c == L'"') {
            for (++at; at < text.size() && text[at] != L'"'; ++at) {
                if (text[at] == L'\\') ++at;
            }
            if (at >= text.size()) return true;
        } else if (c == L';' && at + 1 < text.size() && text[at + 1] == L'|') {
            const size_t end = text.find(L"|;", at + 2);
            if (end == std::wstring_view::npos) return true;
            at = end + 1;
        } else if (c == L';') {
            at = text.find(L'\n', at);
            if (at == std::wstring_view::npos) break;
        } else if (c == L'(') {
            ++depth;
        } else if (c == L')') {
            --depth;
        }
    }
    return depth > 0;
}

}  // namespace sg::lisp
