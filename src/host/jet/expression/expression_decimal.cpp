#include "host/jet/expression/expression_decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "host/jet/expression/expression_functions.h"

namespace sg::jet::detail {
namespace {

constexpr int maxDigits = 28;

// A number as its decimal digits, least significant first and without zeros at the top: the value
// is digits / 10^scale. Zero has no digits.
struct Digits {
    bool negative = false;
    int scale = 0;
    std::string digits;  // 0 to 9, not characters

    void trimTop() {
        while (!digits.empty() && digits.back() == 0) {
            digits.pop_back();
        }
    }
    // Takes `count` digits off the low end, rounding to even.
    void dropLow(int count);
    // Appends zeros behind the point.
    void extend(int count) {
        digits.insert(0, static_cast<size_t>(count), 0);
        scale += count;
    }
};

void increment(std::string& digits) {
    for (char& digit : digits) {
        if (digit < 9) {
            ++digit;
            return;
        }
        digit = 0;
    }
    digits += 1;
}

void Digits::dropLow(int count) {
    scale -= count;
    const auto size = static_cast<int>(digits.size());
    if (count > size) {
        digits.clear();
        return;
    }
    const auto cut = static_cast<size_t>(count);
    const int first = count > 0 ? digits[cut - 1] : 0;
    const bool beyondHalf = count > 0 && std::any_of(digits.begin(), digits.begin() + (count - 1),
                                                     [](char digit) { return digit != 0; });
    digits.erase(0, cut);
    const bool odd = !digits.empty() && digits[0] % 2 != 0;
    if (first > 5 || (first == 5 && (beyondHalf || odd))) {
        increment(digits);
    }
    trimTop();
}

Digits digitsOf(const Decimal& value) {
    Digits result{value.negative, value.scale, {}};
    std::array<uint32_t, 4> words = value.words;
    while (std::any_of(words.begin(), words.end(), [](uint32_t word) { return word != 0; })) {
        uint64_t rest = 0;
        for (uint32_t& word : words) {
            const uint64_t part = rest << 32 | word;
            word = static_cast<uint32_t>(part / 10);
            rest = part % 10;
        }
        result.digits += static_cast<char>(rest);
    }
    return result;
}

// Brings the number to 28 digits with 0 to 28 of them behind the point.
Decimal packed(Digits value) {
    value.trimTop();
    const int excess =
        std::max(static_cast<int>(value.digits.size()) - maxDigits, value.scale - maxDigits);
    if (excess > 0 && value.scale > 0) {
        value.dropLow(std::min(excess, value.scale));
    }
    if (value.scale < 0) {
        value.extend(std::min(-value.scale, 2 * maxDigits));
    }
    if (static_cast<int>(value.digits.size()) > maxDigits && value.scale > 0) {
        value.dropLow(1);  // rounding has added a digit
    }
    if (static_cast<int>(value.digits.size()) > maxDigits || value.scale < 0) {
        throwConversion(L"overflow of a decimal");
    }
    Decimal result;
    result.scale = static_cast<uint8_t>(value.scale);
    for (size_t i = value.digits.size(); i-- > 0;) {
        uint64_t carry = static_cast<uint64_t>(value.digits[i]);
        for (size_t word = result.words.size(); word-- > 0;) {
            carry += static_cast<uint64_t>(result.words[word]) * 10;
            result.words[word] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
    }
    result.negative = value.negative && !value.digits.empty();
    return result;
}

int compareMagnitudes(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    for (size_t i = a.size(); i-- > 0;) {
        if (a[i] != b[i]) {
            return a[i] < b[i] ? -1 : 1;
        }
    }
    return 0;
}

std::string addMagnitudes(const std::string& a, const std::string& b) {
    std::string sum;
    int carry = 0;
    for (size_t i = 0; i < std::max(a.size(), b.size()) || carry != 0; ++i) {
        carry += (i < a.size() ? a[i] : 0) + (i < b.size() ? b[i] : 0);
        sum += static_cast<char>(carry % 10);
        carry /= 10;
    }
    return sum;
}

// `a` is not less than `b`.
std::string subtractMagnitudes(const std::string& a, const std::string& b) {
    std::string difference = a;
    int borrow = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int digit = a[i] - (i < b.size() ? b[i] : 0) - borrow;
        borrow = digit < 0 ? 1 : 0;
        digit += borrow * 10;
        difference[i] = static_cast<char>(digit);
    }
    while (!difference.empty() && difference.back() == 0) {
        difference.pop_back();
    }
    return difference;
}

void align(Digits& a, Digits& b) {
    if (a.scale < b.scale) {
        a.extend(b.scale - a.scale);
    } else {
        b.extend(a.scale - b.scale);
    }
    a.trimTop();
    b.trimTop();
}

}  // namespace

Decimal add(const Decimal& left, const Decimal& right) {
    Digits a = digitsOf(left);
    Digits b = digitsOf(right);
    align(a, b);
    if (a.negative == b.negative) {
        a.digits = addMagnitudes(a.digits, b.digits);
    } else if (compareMagnitudes(a.digits, b.digits) >= 0) {
        a.digits = subtractMagnitudes(a.digits, b.digits);
    } else {
        a.digits = subtractMagnitudes(b.digits, a.digits);
        a.negative = b.negative;
    }
    return packed(std::move(a));
}

Decimal negated(const Decimal& a) {
    Decimal result = a;
    result.negative = !a.negative && !isZero(a);
    return result;
}

Decimal subtract(const Decimal& a, const Decimal& b) {
    return add(a, negated(b));
}

Decimal multiply(const Decimal& left, const Decimal& right) {
    const Digits a = digitsOf(left);
    const Digits b = digitsOf(right);
    Digits product{a.negative != b.negative, a.scale + b.scale, {}};
    product.digits.assign(a.digits.size() + b.digits.size(), 0);
    for (size_t i = 0; i < a.digits.size(); ++i) {
        int carry = 0;
        for (size_t j = 0; j < b.digits.size() || carry != 0; ++j) {
            carry += product.digits[i + j] + (j < b.digits.size() ? a.digits[i] * b.digits[j] : 0);
            product.digits[i + j] = static_cast<char>(carry % 10);
            carry /= 10;
        }
    }
    return packed(std::move(product));
}

Decimal divide(const Decimal& left, const Decimal& right) {
    Digits a = digitsOf(left);
    const Digits b = digitsOf(right);
    if (b.digits.empty()) {
        throwConversion(L"division by zero");
    }
    // Twice the digits that a result has, so that it is rounded once only.
    a.extend(2 * maxDigits + 2);
    Digits quotient{a.negative != b.negative, a.scale - b.scale, {}};
    std::string rest;
    for (size_t i = a.digits.size(); i-- > 0;) {
        if (!rest.empty() || a.digits[i] != 0) {
            rest.insert(0, 1, a.digits[i]);
        }
        char digit = 0;
        while (compareMagnitudes(rest, b.digits) >= 0) {
            rest = subtractMagnitudes(rest, b.digits);
            ++digit;
        }
        quotient.digits.insert(0, 1, digit);
    }
    if (!rest.empty()) {  // what follows tells a tie from more than one half
        quotient.digits.insert(0, 1, 1);
        ++quotient.scale;
    }
    quotient.trimTop();
    while (quotient.scale > 0 && !quotient.digits.empty() && quotient.digits[0] == 0) {
        quotient.dropLow(1);
    }
    return packed(std::move(quotient));
}

Decimal rounded(const Decimal& a, int places) {
    Digits digits = digitsOf(a);
    if (digits.scale > places) {
        digits.dropLow(digits.scale - places);
    }
    return packed(std::move(digits));
}

Decimal truncated(const Decimal& a) {
    Digits digits = digitsOf(a);
    digits.digits.erase(0, static_cast<size_t>(digits.scale));
    digits.scale = 0;
    return packed(std::move(digits));
}

bool isZero(const Decimal& a) {
    return a.words == std::array<uint32_t, 4>{};
}

int compare(const Decimal& left, const Decimal& right) {
    Digits a = digitsOf(left);
    Digits b = digitsOf(right);
    align(a, b);
    const bool aNegative = a.negative && !a.digits.empty();
    const bool bNegative = b.negative && !b.digits.empty();
    if (aNegative != bNegative) {
        return aNegative ? -1 : 1;
    }
    const int order = compareMagnitudes(a.digits, b.digits);
    return aNegative ? -order : order;
}

Decimal decimalOf(int64_t value) {
    const auto bits = static_cast<uint64_t>(value);
    const uint64_t magnitude = value < 0 ? 0 - bits : bits;
    Decimal result;
    result.negative = value < 0;
    result.words[2] = static_cast<uint32_t>(magnitude >> 32);
    result.words[3] = static_cast<uint32_t>(magnitude);
    return result;
}

Decimal decimalOf(Currency value) {
    Decimal result = decimalOf(value.scaled);
    result.scale = 4;
    return result;
}

Decimal decimalOf(double value) {
    if (!std::isfinite(value) || std::abs(value) >= 1e28) {
        throwConversion(L"overflow of a decimal");
    }
    char text[40] = {};  // D.DDDDDDDDDDDDDDe+XX
    std::to_chars(text, text + sizeof text - 1, std::abs(value), std::chars_format::scientific, 14);
    Digits digits{value < 0, 14 - std::atoi(text + 17), {}};
    for (size_t i = 15; i >= 2; --i) {
        digits.digits += static_cast<char>(text[i] - '0');
    }
    digits.digits += static_cast<char>(text[0] - '0');
    digits.trimTop();
    if (digits.digits.empty()) {
        return {};
    }
    while (digits.digits[0] == 0) {
        digits.dropLow(1);
    }
    return packed(std::move(digits));
}

Currency currencyOf(const Decimal& value) {
    Digits digits = digitsOf(value);
    if (digits.scale > 4) {
        digits.dropLow(digits.scale - 4);
    } else {
        digits.extend(4 - digits.scale);
        digits.trimTop();
    }
    uint64_t magnitude = 0;
    constexpr auto limit = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    for (size_t i = digits.digits.size(); i-- > 0;) {
        const auto digit = static_cast<uint64_t>(digits.digits[i]);
        if (magnitude > (limit - digit) / 10) {
            throwConversion(L"overflow of a currency value");
        }
        magnitude = magnitude * 10 + digit;
    }
    const auto scaled = static_cast<int64_t>(magnitude);
    return {digits.negative ? -scaled : scaled};
}

}  // namespace sg::jet::detail
