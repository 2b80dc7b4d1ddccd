#include "host/jet/expression/expression_functions.h"

#include <cmath>
#include <limits>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {

const Function* findFunction(std::wstring_view name) {
    if (!name.empty() && name.back() == L'$') {
        name.remove_suffix(1);
    }
    for (const std::span<const Function> family :
         {choiceFunctions(), conversionFunctions(), dateFunctions(), moneyFunctions(),
          numberFunctions(), textFunctions()}) {
        for (const Function& function : family) {
            if (equalIgnoringCase(function.name, name)) {
                return &function;
            }
        }
    }
    return nullptr;
}

void throwConversion(std::wstring detail) {
    throw Error(ConversionError, {}, {.detail = std::move(detail)});
}

void throwInvalidArgument(std::wstring detail) {
    throw Error(InvalidArgument, {}, {.detail = std::move(detail)});
}

double numberOf(const Value& value) {
    double number = 0;
    if (!toDouble(value, number)) {
        throwConversion(L"not a number: \"" + toInvariantText(value).substr(0, 50) + L"\"");
    }
    return number;
}

int32_t wholeOf(const Value& value) {
    const double number = std::nearbyint(numberOf(value));
    if (!(number >= std::numeric_limits<int32_t>::min() &&
          number <= std::numeric_limits<int32_t>::max())) {
        throwConversion(L"overflow");
    }
    return static_cast<int32_t>(number);
}

Date dateOf(const Value& value) {
    Date date;
    const auto* text = std::get_if<std::wstring>(&value);
    if (text == nullptr || !parseDate(*text, date)) {
        date.days = numberOf(value);
    }
    if (!(date.days > -657435 && date.days < 2958466)) {
        throwConversion(L"a date beyond the years 100 to 9999");
    }
    return date;
}

bool truthOf(const Value& value) {
    if (isNull(value)) {
        return false;
    }
    if (const auto* boolean = std::get_if<bool>(&value)) {
        return *boolean;
    }
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        const std::wstring_view word = trimmed(*text);
        for (const wchar_t* name : {L"True", L"Yes", L"On"}) {
            if (equalIgnoringCase(word, name)) {
                return true;
            }
        }
        for (const wchar_t* name : {L"False", L"No", L"Off"}) {
            if (equalIgnoringCase(word, name)) {
                return false;
            }
        }
    }
    return numberOf(value) != 0;
}

int32_t wholeOr(std::span<const Value> arguments, size_t place, int32_t otherwise) {
    return place < arguments.size() ? wholeOf(arguments[place]) : otherwise;
}

Value wholeValue(int64_t value) {
    if (value == static_cast<int16_t>(value)) {
        return static_cast<int16_t>(value);
    }
    if (value == static_cast<int32_t>(value)) {
        return static_cast<int32_t>(value);
    }
    return static_cast<double>(value);
}

}  // namespace sg::jet::detail
