#include <algorithm>
#include <charconv>
#include <cwchar>
#include <limits>

#include "base/text.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/tables.h"
#include "host/lisp/text/numbers.h"
#include "host/lisp/text/strings.h"
#include "host/lisp/text/wildcard.h"

// Strings and characters. Strings never change, so whatever leaves its text as it is answers its
// argument instead of a copy.
namespace sg::lisp {
namespace {

constexpr int32_t kLastCharacter = 0x10FFFF;

// ---- Arguments ----------------------------------------------------------------------------------

wchar_t characterCode(Interpreter& in, Value v) {
    const int32_t code = in.integer(v);
    if (code < 0 || code > kLastCharacter) in.badValue(L"character code: " + std::to_wstring(code));
    return static_cast<wchar_t>(code);
}

size_t nonNegative(Interpreter& in, Value v) {
    const int32_t n = in.integer(v);
    if (n < 0) in.badValue(L"non-negative " + std::to_wstring(n));
    return static_cast<size_t>(n);
}

// A 0-based position that may be missing or nil, for the start of the string.
size_t startPosition(Interpreter& in, Value v) {
    return v ? nonNegative(in, v) : 0;
}

// `part`, which lies in the string `whole`, as a string of its own.
Value partOf(Interpreter& in, Value whole, std::wstring_view part) {
    return part.size() == whole.asString()->length ? whole : in.string(part);
}

// ---- The classic functions ----------------------------------------------------------------------

Value fnStrcat(Interpreter& in, Args a) {
    size_t length = 0;
    for (const Value v : a)
        length += in.text(v).size();
    String* const result = in.heap().newString(length);
    wchar_t* end = result->chars();
    for (const Value v : a) {
        const String* piece = v.asString();
        std::wmemcpy(end, piece->chars(), piece->length);
        end += piece->length;
    }
    return Value::string(result);
}

Value fnStrlen(Interpreter& in, Args a) {
    size_t length = 0;
    for (const Value v : a)
        length += in.text(v).size();
    if (length > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
        in.badValue(L"string length: " + std::to_wstring(length));
    }
    return Value::integer(static_cast<int32_t>(length));
}

Value fnSubstr(Interpreter& in, Args a) {
    const std::wstring_view text = in.text(a[0]);
    const int32_t start = in.integer(a[1]);
    if (start < 1) in.badValue(L"positive " + std::to_wstring(start));
    const size_t length = a.get(2) ? nonNegative(in, a[2]) : text.size();
    return partOf(in, a[0], text.substr(std::min<size_t>(start - 1, text.size()), length));
}

Value convertedCase(Interpreter& in, std::wstring_view text, wchar_t (*convert)(wchar_t)) {
    String* const result = in.heap().newString(text.size());
    std::transform(text.begin(), text.end(), result->chars(), convert);
    return Value::string(result);
}

Value fnStrcase(Interpreter& in, Args a) {
    return convertedCase(in, in.text(a[0]), a.get(1) ? toLower : toUpper);
}

Value fnXstrcase(Interpreter& in, Args a) {
    return convertedCase(in, in.text(a[0]), toUpper);
}

Value fnAscii(Interpreter& in, Args a) {
    const std::wstring_view text = in.text(a[0]);
    return Value::integer(text.empty() ? 0 : static_cast<int32_t>(text.front()));
}

Value fnChr(Interpreter& in, Args a) {
    const wchar_t c = characterCode(in, a[0]);
    return c == 0 ? in.string({}) : in.string({&c, 1});
}

Value fnWcmatch(Interpreter& in, Args a) {
    return in.boolean(wildcardMatch(in.text(a[0]), in.text(a[1])));
}

// ---- Numbers ------------------------------------------------------------------------------------

Value fnAtoi(Interpreter& in, Args a) {
    return Value::integer(parseInteger(in.text(a[0])));
}

Value fnAtof(Interpreter& in, Args a) {
    return Value::real(parseReal(in.text(a[0])));
}

Value fnItoa(Interpreter& in, Args a) {
    char digits[std::numeric_limits<int32_t>::digits10 + 2];  // the sign, and a digit more
    const char* const end =
        std::to_chars(std::begin(digits), std::end(digits), in.integer(a[0])).ptr;
    String* const result = in.heap().newString(static_cast<size_t>(end - digits));
    std::copy(static_cast<const char*>(digits), end, result->chars());
    return Value::string(result);
}

// ---- The vl-string functions --------------------------------------------------------------------

Value fnStringElt(Interpreter& in, Args a) {
    const std::wstring_view text = in.text(a[0]);
    const int32_t position = in.integer(a[1]);
    if (position < 0 || static_cast<size_t>(position) >= text.size()) {
        in.badValue(L"string position out of range " + std::to_wstring(position));
    }
    return Value::integer(static_cast<int32_t>(text[static_cast<size_t>(position)]));
}

Value fnStringLeftTrim(Interpreter& in, Args a) {
    return partOf(in, a[1], stringLeftTrim(in.text(a[0]), in.text(a[1])));
}

Value fnStringRightTrim(Interpreter& in, Args a) {
    return partOf(in, a[1], stringRightTrim(in.text(a[0]), in.text(a[1])));
}

Value fnStringTrim(Interpreter& in, Args a) {
    return partOf(in, a[1], stringTrim(in.text(a[0]), in.text(a[1])));
}

Value fnStringSearch(Interpreter& in, Args a) {
    const auto at = stringSearch(in.text(a[0]), in.text(a[1]), startPosition(in, a.get(2)));
    return at ? Value::integer(static_cast<int32_t>(*at)) : Value::nil();
}

Value fnStringPosition(Interpreter& in, Args a) {
    const wchar_t c = characterCode(in, a[0]);
    const std::wstring_view text = in.text(a[1]);
    const size_t start = startPosition(in, a.get(2));
    // Seen from the end, the start is where the search stops.
    const size_t at = a.get(3) ? text.rfind(c) : text.find(c, start);
    if (at == std::wstring_view::npos || at < start) return Value::nil();
    return Value::integer(static_cast<int32_t>(at));
}

Value fnStringMismatch(Interpreter& in, Args a) {
    const size_t common = stringMismatch(in.text(a[0]), in.text(a[1]), startPosition(in, a.get(2)),
                                         startPosition(in, a.get(3)), bool(a.get(4)));
    return Value::integer(static_cast<int32_t>(common));
}

Value fnStringSubst(Interpreter& in, Args a) {
    const std::wstring_view replacement = in.text(a[0]);
    const std::wstring_view pattern = in.text(a[1]);
    const std::wstring_view text = in.text(a[2]);
    const auto at = stringSearch(pattern, text, startPosition(in, a.get(3)));
    return at ? in.string(stringSubst(replacement, pattern, text, *at)) : a[2];
}

Value fnStringTranslate(Interpreter& in, Args a) {
    const std::wstring_view source = in.text(a[0]);
    const std::wstring_view destination = in.text(a[1]);
    const std::wstring_view text = in.text(a[2]);
    if (text.find_first_of(source) == std::wstring_view::npos) return a[2];
    return in.string(stringTranslate(source, destination, text));
}

Value fnStringToList(Interpreter& in, Args a) {
    ListBuilder codes(in);
    for (const wchar_t c : in.text(a[0]))
        codes.add(Value::integer(static_cast<int32_t>(c)));
    return codes.list();
}

Value fnListToString(Interpreter& in, Args a) {
    size_t length = 0;
    Value rest = in.checkList(a[0]);
    for (; rest.isCons(); rest = rest.asCons()->cdr, ++length)
        characterCode(in, rest.asCons()->car);
    if (rest) in.badArgument(L"listp", a[0]);

    String* const result = in.heap().newString(length);
    wchar_t* end = result->chars();
    for (rest = a[0]; rest.isCons(); rest = rest.asCons()->cdr) {
        *end++ = static_cast<wchar_t>(rest.asCons()->car.asInt());
    }
    return Value::string(result);
}

// ---- Symbol table names -------------------------------------------------------------------------

bool isExtendedNameCharacter(wchar_t c) {
    return c >= L' ' && c != 0x7F && std::wcschr(L"<>/\\\":;?*,=`|", c) == nullptr;
}

bool isShortNameCharacter(wchar_t c) {
    const wchar_t capital = toUpper(c);
    return (capital >= L'A' && capital <= L'Z') || (c >= L'0' && c <= L'9') || c == L'$' ||
           c == L'-' || c == L'_';
}

// An asterisk in front marks names that the drawing itself gives, as those of anonymous blocks.
// Bars, where they are wanted, join the parts of a name that came from another drawing.
bool isSymbolTableName(std::wstring_view name, bool extended, bool withBars) {
    if (name.size() > (extended ? 255 : 31)) return false;
    if (name.starts_with(L'*')) name.remove_prefix(1);
    if (name.empty()) return false;
    for (const wchar_t end : {name.front(), name.back()}) {
        if (end == L'|' || end == L' ') return false;
    }
    return std::all_of(name.begin(), name.end(), [=](wchar_t c) {
        if (c == L'|') return withBars;
        return extended ? isExtendedNameCharacter(c) : isShortNameCharacter(c);
    });
}

Value fnSnvalid(Interpreter& in, Args a) {
    const std::wstring_view name = in.text(a[0]);
    const bool withBars = a.get(1) && in.integer(a[1]) != 0;
    const auto& variable = in.hooks().systemVariable;
    const auto extended = variable ? variable(L"EXTNAMES") : std::nullopt;
    return in.boolean(
        isSymbolTableName(name, !extended || *extended != Value::integer(0), withBars));
}

constexpr FunctionRow kRows[] = {
    {L"strcat", fnStrcat, 0, kAnyCount},
    {L"strlen", fnStrlen, 0, kAnyCount},
    {L"substr", fnSubstr, 2, 3},
    {L"strcase", fnStrcase, 1, 2},
    {L"xstrcase", fnXstrcase, 1, 1},
    {L"ascii", fnAscii, 1, 1},
    {L"chr", fnChr, 1, 1},
    {L"wcmatch", fnWcmatch, 2, 2},
    {L"atoi", fnAtoi, 1, 1},
    {L"atof", fnAtof, 1, 1},
    {L"itoa", fnItoa, 1, 1},
    {L"vl-string-elt", fnStringElt, 2, 2},
    {L"vl-string-left-trim", fnStringLeftTrim, 2, 2},
    {L"vl-string-right-trim", fnStringRightTrim, 2, 2},
    {L"vl-string-trim", fnStringTrim, 2, 2},
    {L"vl-string-search", fnStringSearch, 2, 3},
    {L"vl-string-position", fnStringPosition, 2, 4},
    {L"vl-string-mismatch", fnStringMismatch, 2, 5},
    {L"vl-string-subst", fnStringSubst, 3, 4},
    {L"vl-string-translate", fnStringTranslate, 3, 3},
    {L"vl-string->list", fnStringToList, 1, 1},
    {L"vl-list->string", fnListToString, 1, 1},
    {L"snvalid", fnSnvalid, 1, 2},
};

}  // namespace

std::span<const FunctionRow> stringFunctions() {
    return kRows;
}

}  // namespace sg::lisp
