#include "host/jet/values/value.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace sg::jet {
namespace {

constexpr double firstDay = -657434;   // 0100-01-01
constexpr double endOfDays = 2958466;  // 10000-01-01
constexpr int64_t secondsOfDay = 86400;

// Digits with a point before the last `scale` of them.
std::wstring withPoint(std::wstring digits, size_t scale, bool negative) {
    if (digits.size() <= scale) {
        digits.insert(0, scale + 1 - digits.size(), L'0');
    }
    if (scale > 0) {
        digits.insert(digits.size() - scale, 1, L'.');
    }
    return negative ? L"-" + digits : digits;
}

}  // namespace

DateParts partsOf(Date date) {
    const double given = std::isnan(date.days) ? 0 : date.days;
    const double end = endOfDays - 1.0 / (2 * secondsOfDay) - 1e-9;
    // The times of the first day lie below its number.
    const double clamped = given > firstDay - 1 ? std::min(given, end) : firstDay;
    double day = std::trunc(clamped);
    auto seconds = static_cast<uint32_t>(std::lround(std::abs(clamped - day) * secondsOfDay));
    if (seconds == secondsOfDay) {
        seconds = 0;
        day += 1;
    }
    // The days of the proleptic Gregorian calendar from 0000-03-01, so that the leap day ends a
    // year, in cycles of 400 years; every count below is of whole days, positive here.
    const auto fromMarch = static_cast<uint32_t>(static_cast<int32_t>(day) + 693899);
    const uint32_t cycle = fromMarch / 146097;
    const uint32_t dayOfCycle = fromMarch % 146097;
    const uint32_t yearOfCycle =
        (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
    const uint32_t dayOfYear =
        dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
    const uint32_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    DateParts parts;
    parts.day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    parts.month = static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    parts.year = static_cast<int>(cycle * 400 + yearOfCycle + (parts.month <= 2 ? 1 : 0));
    parts.hour = static_cast<int>(seconds / 3600);
    parts.minute = static_cast<int>(seconds / 60 % 60);
    parts.second = static_cast<int>(seconds % 60);
    return parts;
}

std::wstring toText(Date date) {
    const DateParts p = partsOf(date);
    wchar_t text[80];
    std::swprintf(text, std::size(text), L"%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day,
                  p.hour, p.minute, p.second);
    return text;
}

std::wstring toText(const Guid& guid) {
    // The order in which the text shows the bytes.
    static constexpr int order[] = {3,  2, 1, 0,  -1, 5,  4,  -1, 7,  6,
                                    -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    static constexpr wchar_t hex[] = L"0123456789ABCDEF";
    std::wstring text = L"{";
    for (const int at : order) {
        if (at < 0) {
            text += L'-';
        } else {
            const uint8_t byte = guid.bytes[static_cast<size_t>(at)];
            text += hex[byte >> 4];
            text += hex[byte & 15];
        }
    }
    return text + L"}";
}

std::wstring toText(Currency currency) {
    const bool negative = currency.scaled < 0;
    // Negated as unsigned: the smallest amount has no positive counterpart.
    const auto bits = static_cast<uint64_t>(currency.scaled);
    return withPoint(std::to_wstring(negative ? 0 - bits : bits), 4, negative);
}

std::wstring toText(const Decimal& decimal) {
    std::array<uint32_t, 4> words = decimal.words;
    std::wstring digits;
    bool any = true;
    while (any) {
        uint64_t rest = 0;
        any = false;
        for (uint32_t& word : words) {
            const uint64_t part = rest << 32 | word;
            word = static_cast<uint32_t>(part / 10);
            rest = part % 10;
            any = any || word != 0;
        }
        digits += static_cast<wchar_t>(L'0' + rest);
    }
    std::reverse(digits.begin(), digits.end());
    const bool isZero = digits == L"0";
    return withPoint(std::move(digits), decimal.scale, decimal.negative && !isZero);
}

}  // namespace sg::jet
