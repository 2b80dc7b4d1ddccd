// Functions of numbers.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "base/text.h"
#include "host/jet/expression/expression_decimal.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/expression/expression_operators.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

using Arguments = std::span<Value>;

Value finite(double value) {
    if (!std::isfinite(value)) {
        throwConversion(L"overflow");
    }
    return value;
}

// --- rounding, which keeps the number's type ---

bool isWhole(const Value& value) {
    return std::holds_alternative<uint8_t>(value) || std::holds_alternative<int16_t>(value) ||
           std::holds_alternative<int32_t>(value) || std::holds_alternative<int64_t>(value);
}

// `change` on the kinds of numbers that have a fraction.
template <class OnDouble, class OnDecimal>
Value changed(const Value& value, OnDouble onDouble, OnDecimal onDecimal) {
    if (isWhole(value)) {
        return value;
    }
    if (const auto* boolean = std::get_if<bool>(&value)) {
        return static_cast<int16_t>(*boolean ? -1 : 0);
    }
    if (const auto* currency = std::get_if<Currency>(&value)) {
        return currencyOf(onDecimal(decimalOf(*currency)));
    }
    if (const auto* decimal = std::get_if<Decimal>(&value)) {
        return onDecimal(*decimal);
    }
    if (const auto* single = std::get_if<float>(&value)) {
        return static_cast<float>(onDouble(*single));
    }
    const double result = onDouble(numberOf(value));
    return std::holds_alternative<Date>(value) ? Value(Date{result}) : finite(result);
}

Decimal floored(const Decimal& value) {
    const Decimal whole = truncated(value);
    return value.negative && compare(whole, value) != 0 ? subtract(whole, decimalOf(int64_t{1}))
                                                        : whole;
}

Value intFunction(Evaluation&, Arguments arguments) {
    return changed(
        arguments[0], [](double v) { return std::floor(v); }, floored);
}

Value fix(Evaluation&, Arguments arguments) {
    return changed(
        arguments[0], [](double v) { return std::trunc(v); }, truncated);
}

// The nearest number with so many digits behind the point as it is written in decimal, the even
// one of two: of a Double the 15 digits that it shows.
double roundedDouble(double value, int places) {
    if (!std::isfinite(value) || std::abs(value) >= 1e15) {
        return value;
    }
    double result = 0;
    toDouble(rounded(decimalOf(value), places), result);
    return result;
}

Value round(Evaluation&, Arguments arguments) {
    const int32_t places = wholeOr(arguments, 1, 0);
    if (places < 0 || places > 22) {
        throwInvalidArgument(L"places to round to");
    }
    return changed(
        arguments[0], [&](double v) { return roundedDouble(v, places); },
        [&](const Decimal& v) { return rounded(v, places); });
}

Value absFunction(Evaluation&, Arguments arguments) {
    const Value& value = arguments[0];
    return numberOf(value) < 0
               ? negate(value)
               : changed(
                     value, [](double v) { return v; }, [](const Decimal& v) { return v; });
}

Value sgn(Evaluation&, Arguments arguments) {
    const double value = numberOf(arguments[0]);
    return static_cast<int16_t>(value < 0 ? -1 : value > 0 ? 1 : 0);
}

// --- functions of reals ---

Value sqr(Evaluation&, Arguments arguments) {
    const double value = numberOf(arguments[0]);
    if (value < 0) {
        throwInvalidArgument(L"square root of a negative number");
    }
    return std::sqrt(value);
}

Value log(Evaluation&, Arguments arguments) {
    const double value = numberOf(arguments[0]);
    if (value <= 0) {
        throwInvalidArgument(L"logarithm of a number that is not positive");
    }
    return std::log(value);
}

template <double (*Of)(double)>
Value real(Evaluation&, Arguments arguments) {
    return finite(Of(numberOf(arguments[0])));
}

// --- chance ---

// 24 random bits as a number below 1; of a negative argument always the same.
Value rnd(Evaluation&, Arguments arguments) {
    uint32_t bits = 0;
    const double seed = arguments.empty() ? 1 : numberOf(arguments[0]);
    if (seed < 0) {
        bits = static_cast<uint32_t>(
            std::minstd_rand(static_cast<uint32_t>(std::fmod(-seed, 32768) * 65536))());
    } else {
        bits = std::random_device()();
    }
    return static_cast<float>(bits >> 7 & 0xffffff) / 16777216.0f;
}

Value genGuid(Evaluation&, Arguments) {
    std::random_device source;
    Guid guid;
    for (uint8_t& byte : guid.bytes) {
        byte = static_cast<uint8_t>(source());
    }
    // Version 4, variant 1; the third group's bytes are swapped.
    guid.bytes[7] = static_cast<uint8_t>((guid.bytes[7] & 0x0f) | 0x40);
    guid.bytes[8] = static_cast<uint8_t>((guid.bytes[8] & 0x3f) | 0x80);
    return guid;
}

Value genUniqueId(Evaluation&, Arguments) {
    return static_cast<int32_t>(std::random_device()());
}

// --- numbers and digits ---

Value inRadix(const Value& value, unsigned shift) {
    static constexpr wchar_t digits[] = L"0123456789ABCDEF";
    // A negative Integer has 16 bits, every other negative number 32.
    auto bits = static_cast<uint32_t>(wholeOf(value));
    if (std::holds_alternative<int16_t>(value) || std::holds_alternative<bool>(value)) {
        bits &= 0xffff;
    }
    std::wstring text;
    do {
        text.insert(0, 1, digits[bits & ((1u << shift) - 1)]);
        bits >>= shift;
    } while (bits != 0);
    return text;
}

Value hex(Evaluation&, Arguments arguments) {
    return inRadix(arguments[0], 4);
}

Value oct(Evaluation&, Arguments arguments) {
    return inRadix(arguments[0], 3);
}

// The number behind "&H" or "&O", of 16 or 32 bits with a sign.
double radixValue(const std::string& text) {
    const int base = text[1] == 'H' ? 16 : 8;
    uint32_t bits = 0;
    const auto read = std::from_chars(text.data() + 2, text.data() + text.size(), bits, base);
    if (read.ec != std::errc()) {
        return 0;
    }
    return bits <= 0xffff ? static_cast<int16_t>(bits) : static_cast<int32_t>(bits);
}

// The number that a text begins with, blanks within it passed over; 0 when there is none.
Value val(Evaluation& evaluation, Arguments arguments) {
    const std::wstring text = toInvariantText(arguments[0]);
    evaluation.charge(text.size());
    std::string plain;
    for (const wchar_t c : text) {
        if (!isBlank(c)) {
            plain += c < 0x80 ? static_cast<char>(toUpper(c)) : '?';
        }
        if (plain.size() > 400) {
            break;
        }
    }
    if (plain.size() > 2 && plain[0] == '&' && (plain[1] == 'H' || plain[1] == 'O')) {
        return radixValue(plain);
    }
    const size_t sign = !plain.empty() && (plain[0] == '+' || plain[0] == '-') ? 1 : 0;
    // Neither "inf" nor "nan" is a number here.
    if (plain.find_first_of("0123456789.") != sign) {
        return 0.0;
    }
    double value = 0;
    const char* end = plain.data() + plain.size();
    if (std::from_chars(plain.data() + sign, end, value).ec == std::errc::result_out_of_range) {
        throwConversion(L"overflow");
    }
    return plain[0] == '-' ? -value : value;
}

Value rgb(Evaluation&, Arguments arguments) {
    int32_t color = 0;
    for (size_t i = 3; i-- > 0;) {
        const int32_t part = wholeOf(arguments[i]);
        if (part < 0) {
            throwInvalidArgument(L"part of a color");
        }
        color = color << 8 | std::min(part, 255);
    }
    return color;
}

// Partition(number, start, stop, interval): the interval that the number is in, as "20: 29". What
// lies before `start` or behind `stop` is in an interval with one end.
Value partition(Evaluation&, Arguments arguments) {
    const int64_t number = wholeOf(arguments[0]);
    const int64_t start = wholeOf(arguments[1]);
    const int64_t stop = wholeOf(arguments[2]);
    const int64_t interval = wholeOf(arguments[3]);
    if (start < 0 || stop <= start || interval < 1) {
        throwInvalidArgument(L"Partition");
    }
    const int64_t low = start + (number - start) / interval * interval;
    std::wstring from = number < start  ? std::wstring()
                        : number > stop ? std::to_wstring(stop + 1)
                                        : std::to_wstring(low);
    std::wstring to = number < start  ? std::to_wstring(start - 1)
                      : number > stop ? std::wstring()
                                      : std::to_wstring(std::min(low + interval - 1, stop));
    const size_t width =
        std::max(std::to_wstring(start - 1).size(), std::to_wstring(stop + 1).size());
    from.insert(0, width - from.size(), L' ');
    to.insert(0, width - to.size(), L' ');
    return from + L":" + to;
}

constexpr Function functions[] = {
    {L"Abs", 1, 1, NullArguments::GiveNull, absFunction},
    {L"Atn", 1, 1, NullArguments::GiveNull, real<std::atan>},
    {L"Cos", 1, 1, NullArguments::GiveNull, real<std::cos>},
    {L"Exp", 1, 1, NullArguments::GiveNull, real<std::exp>},
    {L"Fix", 1, 1, NullArguments::GiveNull, fix},
    {L"GenGUID", 0, 0, NullArguments::GiveNull, genGuid},
    {L"GenUniqueID", 0, 0, NullArguments::GiveNull, genUniqueId},
    {L"Hex", 1, 1, NullArguments::GiveNull, hex},
    {L"Int", 1, 1, NullArguments::GiveNull, intFunction},
    {L"Log", 1, 1, NullArguments::GiveNull, log},
    {L"Oct", 1, 1, NullArguments::GiveNull, oct},
    {L"Partition", 4, 4, NullArguments::GiveNull, partition},
    {L"RGB", 3, 3, NullArguments::GiveNull, rgb},
    {L"Rnd", 0, 1, NullArguments::GiveNull, rnd},
    {L"Round", 1, 2, NullArguments::GiveNull, round},
    {L"Sgn", 1, 1, NullArguments::GiveNull, sgn},
    {L"Sin", 1, 1, NullArguments::GiveNull, real<std::sin>},
    {L"Sqr", 1, 1, NullArguments::GiveNull, sqr},
    {L"Tan", 1, 1, NullArguments::GiveNull, real<std::tan>},
    {L"Val", 1, 1, NullArguments::GiveNull, val},
};

}  // namespace

std::span<const Function> numberFunctions() {
    return functions;
}

}  // namespace sg::jet::detail
