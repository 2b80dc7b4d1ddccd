#include "host/sql/words.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

namespace sg::sql {
namespace {

using jet::ColumnType;

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
    L"ANY", L"CHECK", L"COLUMN",  L"DEFAULT", L"EXPLAIN", L"FALSE", L"FOREIGN", L"NO",
    L"OFF", L"OUTER", L"PERCENT", L"SOME",    L"TOP",     L"TRUE",  L"YES"};

struct Constant {
    std::wstring_view word;
    std::optional<bool> value;
};
constexpr Constant constants[] = {{L"True", true}, {L"False", false}, {L"Yes", true},
                                  {L"No", false},  {L"On", true},     {L"Off", false},
                                  {L"Null", {}}};

// In the order of AggregateFunction.
constexpr std::wstring_view aggregates[] = {L"Count", L"Sum",   L"Avg",    L"Min", L"Max", L"First",
                                            L"Last",  L"StDev", L"StDevP", L"Var", L"VarP"};

// Of each type the first is the one it is called by.
constexpr TypeWord typeWords[] = {
    {L"BIT", ColumnType::Boolean, false, false, L"VARYING"},
    {L"YESNO", ColumnType::Boolean},
    {L"LOGICAL", ColumnType::Boolean},
    {L"LOGICAL1", ColumnType::Boolean},
    {L"BOOLEAN", ColumnType::Boolean},
    {L"BYTE", ColumnType::Byte},
    {L"TINYINT", ColumnType::Byte},
    {L"INTEGER1", ColumnType::Byte},
    {L"SHORT", ColumnType::Integer},
    {L"SMALLINT", ColumnType::Integer},
    {L"INTEGER2", ColumnType::Integer},
    {L"LONG", ColumnType::Long},
    {L"INTEGER", ColumnType::Long},
    {L"INT", ColumnType::Long},
    {L"INTEGER4", ColumnType::Long},
    {L"COUNTER", ColumnType::Long, true},
    {L"AUTOINCREMENT", ColumnType::Long, true},
    {L"IDENTITY", ColumnType::Long, true},
    {L"CURRENCY", ColumnType::Currency},
    {L"MONEY", ColumnType::Currency},
    {L"SINGLE", ColumnType::Single},
    {L"REAL", ColumnType::Single},
    {L"FLOAT4", ColumnType::Single},
    {L"IEEESINGLE", ColumnType::Single},
    {L"DOUBLE", ColumnType::Double, false, false, L"PRECISION"},
    {L"FLOAT", ColumnType::Double},
    {L"FLOAT8", ColumnType::Double},
    {L"IEEEDOUBLE", ColumnType::Double},
    {L"NUMBER", ColumnType::Double},
    {L"DATETIME", ColumnType::Date},
    {L"DATE", ColumnType::Date},
    {L"TIME", ColumnType::Date},
    {L"TIMESTAMP", ColumnType::Date},
    {L"BINARY", ColumnType::Binary, false, true, L"VARYING"},
    {L"VARBINARY", ColumnType::Binary},
    {L"TEXT", ColumnType::Text},
    {L"VARCHAR", ColumnType::Text},
    {L"STRING", ColumnType::Text},
    {L"ALPHANUMERIC", ColumnType::Text},
    {L"NVARCHAR", ColumnType::Text},
    {L"CHAR", ColumnType::Text, false, true, L"VARYING"},
    {L"CHARACTER", ColumnType::Text, false, true, L"VARYING"},
    {L"NCHAR", ColumnType::Text, false, true, L"VARYING"},
    {L"LONGBINARY", ColumnType::Ole},
    {L"OLEOBJECT", ColumnType::Ole},
    {L"IMAGE", ColumnType::Ole},
    {L"GENERAL", ColumnType::Ole},
    {L"MEMO", ColumnType::Memo},
    {L"LONGTEXT", ColumnType::Memo},
    {L"LONGCHAR", ColumnType::Memo},
    {L"NOTE", ColumnType::Memo},
    {L"NTEXT", ColumnType::Memo},
    {L"GUID", ColumnType::Guid},
    {L"UNIQUEIDENTIFIER", ColumnType::Guid},
    {L"DECIMAL", ColumnType::Numeric},
    {L"NUMERIC", ColumnType::Numeric},
    {L"DEC", ColumnType::Numeric},
    {L"VALUE", std::nullopt},
};

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

std::optional<jet::Value> constantOf(std::wstring_view word) {
    for (const Constant& constant : constants) {
        if (equalIgnoringCase(constant.word, word)) {
            return constant.value ? jet::Value(*constant.value) : jet::Value();
        }
    }
    return std::nullopt;
}

std::optional<AggregateFunction> aggregateOf(std::wstring_view word) {
    for (size_t i = 0; i < std::size(aggregates); ++i) {
        if (equalIgnoringCase(aggregates[i], word)) {
            return static_cast<AggregateFunction>(i);
        }
    }
    return std::nullopt;
}

std::wstring_view nameOf(AggregateFunction function) {
    return aggregates[static_cast<size_t>(function)];
}

std::wstring parameterName(const ColumnName& name) {
    std::wstring joined;
    for (const Name& part : name.qualifiers) {
        joined += part.text + L"!";
    }
    return joined + name.name.text;
}

std::wstring quotedName(std::wstring_view name) {
    const bool needsNone =
        isPlain(name) && !isReserved(name) &&
        std::none_of(std::begin(softWords), std::end(softWords),
                     [&](std::wstring_view word) { return equalIgnoringCase(word, name); });
    return needsNone ? std::wstring(name) : L"[" + std::wstring(name) + L"]";
}

const TypeWord* typeOf(std::wstring_view word) {
    const auto* found =
        std::find_if(std::begin(typeWords), std::end(typeWords),
                     [&](const TypeWord& type) { return equalIgnoringCase(type.word, word); });
    return found == std::end(typeWords) ? nullptr : found;
}

std::wstring_view nameOf(const DataType& type) {
    if (type.type == ColumnType::Binary && !type.fixed) {
        return L"VARBINARY";
    }
    const auto* found =
        std::find_if(std::begin(typeWords), std::end(typeWords), [&](const TypeWord& word) {
            return word.type == type.type && word.autoNumber == type.autoNumber &&
                   word.fixed == type.fixed;
        });
    return found == std::end(typeWords) ? L"VALUE" : found->word;
}

}  // namespace sg::sql
