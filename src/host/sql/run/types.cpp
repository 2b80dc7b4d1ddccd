#include "host/sql/run/types.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

#include "base/text.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::sql {
namespace {

constexpr uint32_t textSize = 255;

// As many characters or bytes as there can be, where they are not all as long.
uint32_t sizeOf(ColumnType type) {
    const bool isShort = type == ColumnType::Text || type == ColumnType::Binary;
    return isShort ? textSize : jet::valueSize(type).value_or(0);
}

// The order in which a type gives way to another.
int rankOf(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
            return 0;
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Complex:
            return 3;
        case ColumnType::Single:
            return 4;
        case ColumnType::Double:
            return 5;
        case ColumnType::Currency:
            return 6;
        case ColumnType::BigInteger:
        case ColumnType::Numeric:
            return 7;
        case ColumnType::Date:
        case ColumnType::DateTimeExtended:
            return 8;
        case ColumnType::Guid:
            return 9;
        case ColumnType::Text:
            return 10;
        case ColumnType::Memo:
            return 11;
        case ColumnType::Binary:
            return 12;
        case ColumnType::Ole:
            return 13;
    }
    return 13;
}

struct FunctionType {
    std::wstring_view name;
    std::optional<ColumnType> type;  // none: its argument's
};

constexpr FunctionType functionTypes[] = {
    {L"Abs", {}},
    {L"Asc", ColumnType::Integer},
    {L"AscW", ColumnType::Integer},
    {L"CBool", ColumnType::Boolean},
    {L"CByte", ColumnType::Byte},
    {L"CCur", ColumnType::Currency},
    {L"CDate", ColumnType::Date},
    {L"CDec", ColumnType::Numeric},
    {L"CInt", ColumnType::Integer},
    {L"CLng", ColumnType::Long},
    {L"CSng", ColumnType::Single},
    {L"CVar", {}},
    {L"CVDate", ColumnType::Date},
    {L"Date", ColumnType::Date},
    {L"DateAdd", ColumnType::Date},
    {L"DateDiff", ColumnType::Long},
    {L"DatePart", ColumnType::Integer},
    {L"DateSerial", ColumnType::Date},
    {L"DateValue", ColumnType::Date},
    {L"Day", ColumnType::Integer},
    {L"Fix", {}},
    {L"GenGUID", ColumnType::Guid},
    {L"GenUniqueID", ColumnType::Long},
    {L"Hour", ColumnType::Integer},
    {L"InStr", ColumnType::Long},
    {L"InStrRev", ColumnType::Long},
    {L"Int", {}},
    {L"IsDate", ColumnType::Boolean},
    {L"IsEmpty", ColumnType::Boolean},
    {L"IsError", ColumnType::Boolean},
    {L"IsNull", ColumnType::Boolean},
    {L"IsNumeric", ColumnType::Boolean},
    {L"Len", ColumnType::Long},
    {L"Minute", ColumnType::Integer},
    {L"Month", ColumnType::Integer},
    {L"Now", ColumnType::Date},
    {L"RGB", ColumnType::Long},
    {L"Rnd", ColumnType::Single},
    {L"Round", {}},
    {L"Second", ColumnType::Integer},
    {L"Sgn", ColumnType::Integer},
    {L"StrComp", ColumnType::Integer},
    {L"Time", ColumnType::Date},
    {L"Timer", ColumnType::Single},
    {L"TimeSerial", ColumnType::Date},
    {L"TimeValue", ColumnType::Date},
    {L"VarType", ColumnType::Integer},
    {L"Weekday", ColumnType::Integer},
    {L"Year", ColumnType::Integer},
};
constexpr std::wstring_view realFunctions[] = {
    L"Atn",  L"CDbl", L"Cos",  L"DDB", L"Exp", L"FV",  L"IPmt", L"Log", L"NPer", L"Pmt",
    L"PPmt", L"PV",   L"Rate", L"Sin", L"SLN", L"Sqr", L"SYD",  L"Tan", L"Val"};

bool isNumber(ColumnType type) {
    return rankOf(type) <= 8;
}

}  // namespace

Type::Type(ColumnType type) : column(type), size(sizeOf(type)) {}

Form formOf(const Type& type) {
    if (!type.column) {
        return Form::Null;
    }
    switch (*type.column) {
        case ColumnType::Single:
            return Form::Single;
        case ColumnType::Double:
            return Form::Real;
        case ColumnType::Date:
        case ColumnType::DateTimeExtended:
            return Form::Date;
        case ColumnType::Currency:
            return Form::Currency;
        case ColumnType::Text:
        case ColumnType::Memo:
            return Form::Text;
        case ColumnType::Guid:
            return Form::Guid;
        case ColumnType::Binary:
        case ColumnType::Ole:
            return Form::Bytes;
        case ColumnType::Numeric:
            return Form::Decimal;
        default:
            return Form::Whole;
    }
}

// A literal's whole number is a Long.
Type typeOf(const jet::Value& value) {
    return std::visit(
        []<class T>(const T& held) -> Type {
            if constexpr (std::is_same_v<T, std::monostate>) {
                return {};
            } else if constexpr (std::is_same_v<T, bool>) {
                return ColumnType::Boolean;
            } else if constexpr (std::is_same_v<T, uint8_t>) {
                return ColumnType::Byte;
            } else if constexpr (std::is_same_v<T, int16_t> || std::is_same_v<T, int32_t>) {
                return ColumnType::Long;
            } else if constexpr (std::is_same_v<T, int64_t>) {
                return ColumnType::BigInteger;
            } else if constexpr (std::is_same_v<T, jet::Currency>) {
                return ColumnType::Currency;
            } else if constexpr (std::is_same_v<T, float>) {
                return ColumnType::Single;
            } else if constexpr (std::is_same_v<T, double>) {
                return ColumnType::Double;
            } else if constexpr (std::is_same_v<T, jet::Date>) {
                return ColumnType::Date;
            } else if constexpr (std::is_same_v<T, std::wstring>) {
                return held.size() > textSize ? ColumnType::Memo : ColumnType::Text;
            } else if constexpr (std::is_same_v<T, jet::Bytes>) {
                return held.size() > textSize ? ColumnType::Ole : ColumnType::Binary;
            } else if constexpr (std::is_same_v<T, jet::Guid>) {
                return ColumnType::Guid;
            } else {
                return ColumnType::Numeric;
            }
        },
        value);
}

Type commonType(const Type& a, const Type& b) {
    if (!a.column || !b.column) {
        return a.column ? a : b;
    }
    if (*a.column == *b.column) {
        return {*a.column, std::max(a.size, b.size)};
    }
    const ColumnType high = rankOf(*a.column) > rankOf(*b.column) ? *a.column : *b.column;
    const ColumnType low = high == *a.column ? *b.column : *a.column;
    if (isNumber(high) && isNumber(low)) {
        if (low == ColumnType::Boolean) {
            return high == ColumnType::Byte ? ColumnType::Integer : high;
        }
        const bool wide = high == ColumnType::Single && low == ColumnType::Long;
        return wide ? ColumnType::Double : high;
    }
    if (high == ColumnType::Ole || high == ColumnType::Binary) {
        return low == ColumnType::Binary ? high : ColumnType::Ole;
    }
    return high == ColumnType::Memo ? ColumnType::Memo : ColumnType::Text;
}

Type arithmeticType(const Type& a, const Type& b, bool sum, bool subtract) {
    if (!a.column || !b.column) {
        return {};
    }
    const bool texts = isText(a) && isText(b);
    if (texts && sum && !subtract) {
        return commonType(a, b);
    }
    const auto numeric = [](const Type& type) {
        return isNumber(*type.column) ? *type.column : ColumnType::Double;
    };
    const ColumnType x = numeric(a);
    const ColumnType y = numeric(b);
    const ColumnType high = rankOf(x) > rankOf(y) ? x : y;
    const ColumnType low = high == x ? y : x;
    if (rankOf(high) <= rankOf(ColumnType::Long)) {
        return ColumnType::Long;
    }
    if (high == ColumnType::Single && low == ColumnType::Long) {
        return ColumnType::Double;
    }
    if (!sum && high == ColumnType::Currency &&
        (low == ColumnType::Double || low == ColumnType::Single)) {
        return ColumnType::Double;
    }
    if (high == ColumnType::Date || high == ColumnType::DateTimeExtended) {
        const bool difference = subtract && rankOf(low) == rankOf(high);
        return !sum || difference ? ColumnType::Double : ColumnType::Date;
    }
    return high == ColumnType::BigInteger ? ColumnType::Numeric : high;
}

Type functionType(std::wstring_view name, const Type& first) {
    if (!name.empty() && name.back() == L'$') {
        name.remove_suffix(1);
    }
    const auto named = [&](std::wstring_view known) { return equalIgnoringCase(known, name); };
    if (std::any_of(std::begin(realFunctions), std::end(realFunctions), named)) {
        return ColumnType::Double;
    }
    for (const FunctionType& known : functionTypes) {
        if (!named(known.name)) {
            continue;
        }
        if (known.type) {
            return *known.type;
        }
        if (isText(first) && !named(L"CVar")) {
            return ColumnType::Double;
        }
        const bool whole = formOf(first) == Form::Whole;
        return whole ? Type(ColumnType::Long) : first;
    }
    return first.column == ColumnType::Memo ? ColumnType::Memo : ColumnType::Text;
}

jet::Value asType(const Type& type, jet::Value value) {
    if (!type.column || jet::isNull(value)) {
        return value;
    }
    if (type.column == ColumnType::Boolean) {
        return jet::detail::truthOf(value);
    }
    if (type.column == ColumnType::Date) {
        return jet::detail::dateOf(value);
    }
    if (isText(type)) {
        return jet::toInvariantText(value);
    }
    jet::Column column;
    if (type.column == ColumnType::Numeric) {
        if (std::holds_alternative<jet::Decimal>(value)) {
            return value;
        }
        column.precision = 28;
        column.scale = std::holds_alternative<jet::Currency>(value) ? 4 : 10;
        if (formOf(typeOf(value)) == Form::Whole) {
            column.scale = 0;
        }
    }
    column.type = *type.column;
    column.length = 0xffff;
    const bool whole = formOf(type) == Form::Whole;
    const jet::Value before = value;
    try {
        jet::convertTo(column, value);
    } catch (const jet::Error&) {
        double number = 0;
        if (!whole || !jet::toDouble(before, number)) {
            throw;
        }
        return before;
    }
    return value;
}

}  // namespace sg::sql
