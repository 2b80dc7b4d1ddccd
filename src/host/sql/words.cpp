#include "host/sql/words.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

namespace sg::sql {
namespace {

using jet::ColumnType;

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

}  // namespace

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
