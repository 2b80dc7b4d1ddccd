#include "host/jet/expression/words.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

namespace sg::jet {
namespace {

// Ascending, for binary search.
constexpr std::wstring_view reservedWords[] = {
    L"ALL",        L"ALTER",   L"AND",        L"AS",     L"ASC",      L"BETWEEN",     L"BY",
    L"CONSTRAINT", L"CREATE",  L"DELETE",     L"DESC",   L"DISTINCT", L"DISTINCTROW", L"DROP",
    L"EQV",        L"EXISTS",  L"FROM",       L"GROUP",  L"HAVING",   L"IMP",         L"IN",
    L"INNER",      L"INSERT",  L"INTO",       L"IS",     L"JOIN",     L"LEFT",        L"LIKE",
    L"MOD",        L"NOT",     L"NULL",       L"ON",     L"OR",       L"ORDER",       L"PARAMETERS",
    L"PIVOT",      L"PRIMARY", L"REFERENCES", L"RIGHT",  L"SELECT",   L"SET",         L"TABLE",
    L"TRANSFORM",  L"UNION",   L"UNIQUE",     L"UPDATE", L"VALUES",   L"WHERE",       L"WITH",
    L"XOR"};
constexpr size_t longestReservedWord = 11;

// Words that mean something in some places only: there a name needs brackets.
constexpr std::wstring_view softWords[] = {
    L"ALIKE",     L"ANY",   L"CHECK", L"COLUMN", L"DEFAULT", L"EXPLAIN",     L"FALSE",
    L"FOREIGN",   L"INDEX", L"NO",    L"OFF",    L"OUTER",   L"OWNERACCESS", L"PERCENT",
    L"PROCEDURE", L"SOME",  L"TOP",   L"TRUE",   L"YES"};

struct Constant {
    std::wstring_view word;
    std::optional<bool> value;
};
constexpr Constant constants[] = {{L"True", true}, {L"False", false}, {L"Yes", true},
                                  {L"No", false},  {L"On", true},     {L"Off", false},
                                  {L"Null", {}}};

bool isPlain(std::wstring_view name) {
    const auto beginsWord = [](wchar_t c) {
        return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_' ||
               (c >= 0x80 && !isBlank(c));
    };
    return !name.empty() && beginsWord(name[0]) &&
           std::all_of(name.begin(), name.end(),
                       [&](wchar_t c) { return beginsWord(c) || (c >= L'0' && c <= L'9'); });
}

}  // namespace

bool isReserved(std::wstring_view word) {
    return word.size() <= longestReservedWord &&
           std::binary_search(std::begin(reservedWords), std::end(reservedWords),
                              std::wstring_view(upperCased(word)));
}

std::optional<Value> constantOf(std::wstring_view word) {
    for (const Constant& constant : constants) {
        if (equalIgnoringCase(constant.word, word)) {
            return constant.value ? Value(*constant.value) : Value();
        }
    }
    return std::nullopt;
}

std::wstring quotedName(std::wstring_view name) {
    const bool needsNone =
        isPlain(name) && !isReserved(name) &&
        std::none_of(std::begin(softWords), std::end(softWords),
                     [&](std::wstring_view word) { return equalIgnoringCase(word, name); });
    return needsNone ? std::wstring(name) : L"[" + std::wstring(name) + L"]";
}

}  // namespace sg::jet
