#include "host/lisp/text/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/text.h"

namespace sg {

namespace {

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

size_t digitsEnd(std::wstring_view text, size_t at) {
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at;
}

// Where a complete exponent that starts at `at` ends; `at` itself when there is none.
size_t exponentEnd(std::wstring_view text, size_t at) {
    if (at >= text.size() || (text[at] != L'e' && text[at] != L'E')) return at;
    size_t first = at + 1;
    if (first < text.size() && (text[first] == L'+' || text[first] == L'-')) ++first;
    const size_t end = digitsEnd(text, first);
    return end > first ? end : at;
}

// Tells too large from too small for a number that is one of them: `number` is not zero, and its
// exponent of ten, counted at its first digit that is not zero, is far from 0.
bool isTooLarge(std::string_view number) {
    const size_t mantissaEnd = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, mantissaEnd);
    const auto point = static_cast<ptrdiff_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<ptrdiff_t>(mantissa.find_first_of("123456789"));
    ptrdiff_t exponent = 0;
    if (mantissaEnd < number.size()) {
        const bool negative = number[mantissaEnd + 1] == '-';
        // Digits beyond nine say nothing more: no text is long enough to weigh against them.
        for (char c : number.substr(mantissaEnd + 1)) {
            if (c >= '0' && c <= '9' && exponent < 1'000'000'000'000) {
                exponent = exponent * 10 + (c - '0');
            }
        }
        if (negative) exponent = -exponent;
    }
    return exponent + point - first > 0;
}

struct SignAndRest {
    bool negative;
    std::wstring_view rest;
};

SignAndRest splitSign(std::wstring_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
    return {negative, text};
}

}  // namespace

ScannedReal scanReal(std::wstring_view text) {
    const size_t wholeEnd = digitsEnd(text, 0);
    size_t end = wholeEnd;
    size_t digits = wholeEnd;
    if (end < text.size() && text[end] == L'.') {
        end = digitsEnd(text, wholeEnd + 1);
        digits += end - wholeEnd - 1;
    }
    if (digits == 0) return {};
    end = exponentEnd(text, end);

    // Every character is ASCII here.
    std::string narrow(end, '\0');
    std::transform(text.begin(), text.begin() + static_cast<ptrdiff_t>(end), narrow.begin(),
                   [](wchar_t c) { return static_cast<char>(c); });
    ScannedReal scanned{0, end};
    const auto [rest, error] =
        std::from_chars(narrow.data(), narrow.data() + narrow.size(), scanned.value);
    if (error == std::errc::result_out_of_range) {
        scanned.value = isTooLarge(narrow) ? std::numeric_limits<double>::infinity() : 0;
    }
    return scanned;
}

int32_t parseInteger(std::wstring_view text) {
    constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
    constexpr int64_t kMin = std::numeric_limits<int32_t>::min();
    const auto [negative, digits] = splitSign(text);
    int64_t value = 0;
    for (wchar_t c : digits) {
        if (!isDigit(c) || value > kMax) break;
        value = value * 10 + (c - L'0');
    }
    return static_cast<int32_t>(std::clamp(negative ? -value : value, kMin, kMax));
}

double parseReal(std::wstring_view text) {
    const auto [negative, number] = splitSign(text);
    const double value = scanReal(number).value;
    return negative ? -value : value;
}

std::wstring formatReal(double value) {
    if (std::isnan(value)) return L"1.#QNAN";
    if (std::isinf(value)) return value < 0 ? L"-1.#INF" : L"1.#INF";
    if (value == 0) return L"0.0";
    char buffer[32];
    const auto written =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 6);
    std::wstring text(buffer, written.ptr);
    if (text.find(L'.') == std::wstring::npos) {
        text.insert(std::min(text.find(L'e'), text.size()), L".0");
    }
    return text;
}

}  // namespace sg
