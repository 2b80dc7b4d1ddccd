// Functions that choose among values, ask what a value is, or make another type of it.

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "host/jet/expression/expression_decimal.h"
#include "host/jet/expression/expression_format.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

using Arguments = std::span<Value>;
using Nodes = std::span<const NodePtr>;

// --- choice ---

Value iif(Evaluation& evaluation, Nodes nodes) {
    if (evaluation.isTrue(*nodes[0])) {
        return evaluation.evaluate(*nodes[1]);
    }
    return nodes.size() > 2 ? evaluation.evaluate(*nodes[2]) : Value();
}

// Switch(condition, value, condition, value...): Null when none is met.
Value switchFunction(Evaluation& evaluation, Nodes nodes) {
    if (nodes.size() % 2 != 0) {
        throwInvalidArgument(L"Switch without a value for its last condition");
    }
    for (size_t i = 0; i < nodes.size(); i += 2) {
        if (evaluation.isTrue(*nodes[i])) {
            return evaluation.evaluate(*nodes[i + 1]);
        }
    }
    return {};
}

// Choose(place, value, value...): Null for a place that isn't there.
Value choose(Evaluation& evaluation, Nodes nodes) {
    const Value given = evaluation.evaluate(*nodes[0]);
    if (isNull(given)) {
        return {};
    }
    const double place = std::floor(numberOf(given));
    if (!(place >= 1 && place < static_cast<double>(nodes.size()))) {
        return {};
    }
    return evaluation.evaluate(*nodes[static_cast<size_t>(place)]);
}

Value nz(Evaluation& evaluation, Nodes nodes) {
    Value value = evaluation.evaluate(*nodes[0]);
    if (!isNull(value)) {
        return value;
    }
    return nodes.size() > 1 ? evaluation.evaluate(*nodes[1]) : Value(std::wstring());
}

Value isNullFunction(Evaluation&, Arguments arguments) {
    return isNull(arguments[0]);
}

Value isNumeric(Evaluation&, Arguments arguments) {
    double number = 0;
    return !std::holds_alternative<Date>(arguments[0]) && toDouble(arguments[0], number);
}

Value isDate(Evaluation&, Arguments arguments) {
    Date date;
    const auto* text = std::get_if<std::wstring>(&arguments[0]);
    return std::holds_alternative<Date>(arguments[0]) ||
           (text != nullptr && parseDate(*text, date));
}

struct KindOfValue {
    int16_t number;
    const wchar_t* name;
};

KindOfValue kindOf(const Value& value) {
    struct Visitor {
        KindOfValue operator()(std::monostate) const { return {1, L"Null"}; }
        KindOfValue operator()(bool) const { return {11, L"Boolean"}; }
        KindOfValue operator()(uint8_t) const { return {17, L"Byte"}; }
        KindOfValue operator()(int16_t) const { return {2, L"Integer"}; }
        KindOfValue operator()(int32_t) const { return {3, L"Long"}; }
        KindOfValue operator()(float) const { return {4, L"Single"}; }
        KindOfValue operator()(double) const { return {5, L"Double"}; }
        KindOfValue operator()(Currency) const { return {6, L"Currency"}; }
        KindOfValue operator()(Date) const { return {7, L"Date"}; }
        KindOfValue operator()(const std::wstring&) const { return {8, L"String"}; }
        KindOfValue operator()(const Decimal&) const { return {14, L"Decimal"}; }
        KindOfValue operator()(int64_t) const { return {14, L"Decimal"}; }
        KindOfValue operator()(const Bytes&) const { return {8209, L"Byte()"}; }
        KindOfValue operator()(const Guid&) const { return {8209, L"Byte()"}; }
    };
    return std::visit(Visitor(), value);
}

Value varType(Evaluation&, Arguments arguments) {
    return kindOf(arguments[0]).number;
}

Value typeName(Evaluation&, Arguments arguments) {
    return std::wstring(kindOf(arguments[0]).name);
}

// Nothing that an expression gives is one of these.
Value isNever(Evaluation&, Arguments) {
    return false;
}

// --- conversions ---

void refuseNull(const Value& value) {
    if (isNull(value)) {
        throwConversion(L"Null in a conversion");
    }
}

// As such a column would take the value.
Value converted(const Column& column, Value value) {
    try {
        convertTo(column, value);
    } catch (const Error&) {
        throwConversion(L"can't convert \"" + toInvariantText(value).substr(0, 50) + L"\"");
    }
    return value;
}

template <ColumnType Type>
Value toType(Evaluation&, Arguments arguments) {
    refuseNull(arguments[0]);
    Column column;
    column.type = Type;
    return converted(column, std::move(arguments[0]));
}

Value toReal(Evaluation&, Arguments arguments) {
    refuseNull(arguments[0]);
    return numberOf(arguments[0]);
}

Value toBoolean(Evaluation&, Arguments arguments) {
    refuseNull(arguments[0]);
    return truthOf(arguments[0]);
}

Value toDate(Evaluation&, Arguments arguments) {
    refuseNull(arguments[0]);
    return dateOf(arguments[0]);
}

Value toTextFunction(Evaluation&, Arguments arguments) {
    refuseNull(arguments[0]);
    return toInvariantText(arguments[0]);
}

// With all the digits that the value or its text has.
Value toDecimalFunction(Evaluation&, Arguments arguments) {
    Value value = std::move(arguments[0]);
    refuseNull(value);
    if (std::holds_alternative<Decimal>(value)) {
        return value;
    }
    if (const auto* big = std::get_if<int64_t>(&value)) {
        return decimalOf(*big);
    }
    if (const auto* currency = std::get_if<Currency>(&value)) {
        return decimalOf(*currency);
    }
    const auto* text = std::get_if<std::wstring>(&value);
    if (text == nullptr || text->find_first_of(L"eE&") != text->npos) {
        return decimalOf(numberOf(value));
    }
    const std::wstring_view digits = trimmed(*text);
    const size_t point = digits.find(L'.');
    Column column;
    column.type = ColumnType::Numeric;
    column.precision = 28;
    column.scale = static_cast<uint8_t>(
        point == digits.npos ? 0 : std::min<size_t>(digits.size() - point - 1, 28));
    return converted(column, std::move(value));
}

Value asIs(Evaluation&, Arguments arguments) {
    return std::move(arguments[0]);
}

// A number's text with a blank in the sign's place, and without a zero before the point.
Value str(Evaluation&, Arguments arguments) {
    const double number = numberOf(arguments[0]);
    const bool isText = std::holds_alternative<std::wstring>(arguments[0]);
    std::wstring text = toInvariantText(isText ? Value(number) : arguments[0]);
    const size_t sign = !text.empty() && text[0] == L'-' ? 1 : 0;
    if (text.compare(sign, 2, L"0.") == 0) {
        text.erase(sign, 1);
    }
    return sign == 1 ? text : L" " + text;
}

Value format(Evaluation& evaluation, Arguments arguments) {
    const std::wstring pattern =
        arguments.size() > 1 ? toInvariantText(arguments[1]) : std::wstring();
    const int32_t firstDay = std::clamp(wholeOr(arguments, 2, 1), 1, 7);
    const int32_t firstWeek = std::clamp(wholeOr(arguments, 3, 1), 1, 3);
    evaluation.charge(pattern.size() * 32);  // one letter may stand for a whole date
    std::wstring text = formatted(arguments[0], pattern, firstDay, firstWeek);
    Evaluation::checkText(text.size());
    return text;
}

// FormatNumber(value [, digits [, leading zero [, parentheses [, groups]]]]) and its kin: 0 is no,
// what is left out or -2 is as usual.
Value formatNumber(Evaluation& evaluation, Arguments arguments, const wchar_t* before,
                   const wchar_t* behind, bool usualParentheses) {
    const int32_t given = wholeOr(arguments, 1, -1);
    if (given < -1 || given > 99) {
        throwInvalidArgument(L"digits behind the point");
    }
    const auto isWanted = [&](size_t place, bool usually) {
        const int32_t choice = wholeOr(arguments, place, -2);
        return choice == -2 ? usually : choice != 0;
    };
    std::wstring pattern = before;
    pattern += isWanted(4, true) ? L"#,##" : L"#";
    pattern += isWanted(2, true) ? L"0" : L"#";
    const size_t digits = given < 0 ? 2 : static_cast<size_t>(given);
    pattern += digits == 0 ? L"" : L"." + std::wstring(digits, L'0');
    pattern += behind;
    if (isWanted(3, usualParentheses)) {
        pattern += L";(" + pattern + L")";
    }
    evaluation.charge(pattern.size() * 32);
    return formatted(numberOf(arguments[0]), pattern, 1, 1);
}

Value formatPlain(Evaluation& evaluation, Arguments arguments) {
    return formatNumber(evaluation, arguments, L"", L"", false);
}

Value formatCurrency(Evaluation& evaluation, Arguments arguments) {
    return formatNumber(evaluation, arguments, L"$", L"", true);
}

Value formatPercent(Evaluation& evaluation, Arguments arguments) {
    return formatNumber(evaluation, arguments, L"", L"%", false);
}

Value formatDateTime(Evaluation&, Arguments arguments) {
    static constexpr const wchar_t* formats[] = {L"General Date", L"Long Date", L"Short Date",
                                                 L"Long Time", L"Short Time"};
    const int32_t which = wholeOr(arguments, 1, 0);
    if (which < 0 || which > 4) {
        throwInvalidArgument(L"format of a date");
    }
    return formatted(dateOf(arguments[0]), formats[which], 1, 1);
}

constexpr size_t any = 255;

constexpr Function choices[] = {
    {L"Choose", 2, any, NullArguments::ArePassed, nullptr, choose},
    {L"IIf", 2, 3, NullArguments::ArePassed, nullptr, iif},
    {L"IsDate", 1, 1, NullArguments::ArePassed, isDate},
    {L"IsEmpty", 1, 1, NullArguments::ArePassed, isNever},
    {L"IsError", 1, 1, NullArguments::ArePassed, isNever},
    {L"IsNull", 1, 1, NullArguments::ArePassed, isNullFunction},
    {L"IsNumeric", 1, 1, NullArguments::ArePassed, isNumeric},
    {L"Nz", 1, 2, NullArguments::ArePassed, nullptr, nz},
    {L"Switch", 2, any, NullArguments::ArePassed, nullptr, switchFunction},
    {L"TypeName", 1, 1, NullArguments::ArePassed, typeName},
    {L"VarType", 1, 1, NullArguments::ArePassed, varType},
};

constexpr Function conversions[] = {
    {L"CBool", 1, 1, NullArguments::ArePassed, toBoolean},
    {L"CByte", 1, 1, NullArguments::ArePassed, toType<ColumnType::Byte>},
    {L"CCur", 1, 1, NullArguments::ArePassed, toType<ColumnType::Currency>},
    {L"CDate", 1, 1, NullArguments::ArePassed, toDate},
    {L"CDbl", 1, 1, NullArguments::ArePassed, toReal},
    {L"CDec", 1, 1, NullArguments::ArePassed, toDecimalFunction},
    {L"CInt", 1, 1, NullArguments::ArePassed, toType<ColumnType::Integer>},
    {L"CLng", 1, 1, NullArguments::ArePassed, toType<ColumnType::Long>},
    {L"CSng", 1, 1, NullArguments::ArePassed, toType<ColumnType::Single>},
    {L"CStr", 1, 1, NullArguments::ArePassed, toTextFunction},
    {L"CVar", 1, 1, NullArguments::ArePassed, asIs},
    {L"CVDate", 1, 1, NullArguments::GiveNull, toDate},
    {L"Format", 1, 4, NullArguments::ArePassed, format},
    {L"FormatCurrency", 1, 5, NullArguments::GiveNull, formatCurrency},
    {L"FormatDateTime", 1, 2, NullArguments::GiveNull, formatDateTime},
    {L"FormatNumber", 1, 5, NullArguments::GiveNull, formatPlain},
    {L"FormatPercent", 1, 5, NullArguments::GiveNull, formatPercent},
    {L"Str", 1, 1, NullArguments::GiveNull, str},
};

}  // namespace

std::span<const Function> choiceFunctions() {
    return choices;
}

std::span<const Function> conversionFunctions() {
    return conversions;
}

}  // namespace sg::jet::detail
