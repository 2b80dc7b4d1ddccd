#include "host/jet/values/value_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "base/text.h"

namespace sg::jet::numbers {
namespace {

constexpr size_t exactDigits = 38;  // that any Magnitude has room for
constexpr Magnitude largestMagnitude = ~Magnitude(0);

Number exact(int64_t number, unsigned scale = 0) {
    Number result;
    result.negative = number < 0;
    const auto bits = static_cast<uint64_t>(number);
    result.magnitude = result.negative ? 0 - bits : bits;
    result.scale = scale;
    return result;
}

Number floatingNumber(double number, int digits = doubleDigits) {
    Number result;
    result.isExact = false;
    result.floating = number;
    result.digits = digits;
    return result;
}

Number exact(const Decimal& decimal) {
    Number result;
    result.negative = decimal.negative;
    result.scale = decimal.scale;
    for (const uint32_t word : decimal.words) {
        result.magnitude = result.magnitude << 32 | word;
    }
    return result;
}

std::optional<Magnitude> timesTen(Magnitude number) {
    if (number > largestMagnitude / 10) {
        return std::nullopt;
    }
    return number * 10;
}

// What the text of a number is put together from.
struct NumberText {
    bool negative = false;
    std::string digits;  // without leading zeros
    size_t decimals = 0;
    int exponent = 0;
    bool hasExponent = false;
};

constexpr int hugeExponent = 99999;

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

class NumberParser {
  public:
    explicit NumberParser(std::wstring_view text) : rest_(trimmed(text)) {}

    // Everything but the forms with "&".
    bool parse() {
        const bool inParentheses =
            rest_.size() > 2 && rest_.front() == L'(' && rest_.back() == L')';
        if (inParentheses) {
            rest_ = trimmed(rest_.substr(1, rest_.size() - 2));
            result_.negative = true;
        }
        bool hasSign = inParentheses;
        takePrefix(hasSign);
        if (!takeDigits()) {
            return false;
        }
        takeExponent();
        if (!hasSign && !rest_.empty() && (rest_.back() == L'-' || rest_.back() == L'+')) {
            result_.negative = rest_.back() == L'-';
            rest_ = trimmedRight(rest_.substr(0, rest_.size() - 1));
        }
        return rest_.empty();
    }

    const NumberText& result() const { return result_; }

  private:
    wchar_t front() const { return rest_.empty() ? L'\0' : rest_.front(); }
    void skip(size_t count = 1) { rest_.remove_prefix(count); }

    // A sign and a currency mark, in either order.
    void takePrefix(bool& hasSign) {
        bool hasMark = false;
        while (true) {
            if (!hasSign && (front() == L'-' || front() == L'+')) {
                hasSign = true;
                result_.negative = front() == L'-';
            } else if (!hasMark && front() == L'$') {
                hasMark = true;
            } else {
                return;
            }
            skip();
            rest_ = trimmed(rest_);
        }
    }

    void take(wchar_t digit) {
        if (digit != L'0' || !result_.digits.empty()) {
            result_.digits += static_cast<char>(digit);
        }
    }

    // Separators must stand before three digits each, so that "1,5" is nothing.
    bool takeDigits() {
        size_t count = 0;
        size_t group = 0;
        bool grouped = false;
        while (isDigit(front()) || front() == L',') {
            if (front() == L',') {
                if (group == 0 || group > 3 || (grouped && group != 3)) {
                    return false;
                }
                grouped = true;
                group = 0;
            } else {
                take(front());
                ++group;
                ++count;
            }
            skip();
        }
        if (grouped && group != 3) {
            return false;
        }
        if (front() == L'.') {
            skip();
            for (; isDigit(front()); skip()) {
                take(front());
                ++result_.decimals;
                ++count;
            }
        }
        return count > 0;
    }

    void takeExponent() {
        const wchar_t mark = toUpper(front());
        if (mark != L'E' && mark != L'D') {
            return;
        }
        const bool hasSign = rest_.size() > 1 && (rest_[1] == L'-' || rest_[1] == L'+');
        const size_t digitsAt = hasSign ? 2 : 1;
        if (rest_.size() <= digitsAt || !isDigit(rest_[digitsAt])) {
            return;
        }
        const bool negative = rest_[1] == L'-';
        skip(digitsAt);
        int exponent = 0;
        for (; isDigit(front()); skip()) {
            exponent = std::min(exponent * 10 + static_cast<int>(front() - L'0'), hugeExponent);
        }
        result_.exponent = negative ? -exponent : exponent;
        result_.hasExponent = true;
    }

    std::wstring_view rest_;
    NumberText result_;
};

std::optional<Number> exactOf(const NumberText& text) {
    Number number;
    number.negative = text.negative;
    number.scale = static_cast<unsigned>(text.decimals);
    for (const char digit : text.digits) {
        number.magnitude = number.magnitude * 10 + static_cast<unsigned>(digit - '0');
    }
    return number;
}

// What is too small for a double is zero; what is too large is no number.
std::optional<Number> floatingOf(const NumberText& text) {
    const int64_t exponent = text.exponent - static_cast<int64_t>(text.decimals);
    const std::string whole = text.digits + "e" + std::to_string(exponent);
    double number = 0;
    const auto read = std::from_chars(whole.data(), whole.data() + whole.size(), number);
    if (read.ec != std::errc()) {
        if (static_cast<int64_t>(text.digits.size()) + exponent > 0) {
            return std::nullopt;
        }
        number = 0;
    }
    return floatingNumber(text.negative ? -number : number);
}

std::optional<Number> parseBits(std::wstring_view digits, unsigned base) {
    uint64_t bits = 0;
    if (digits.empty()) {
        return std::nullopt;
    }
    for (const wchar_t c : digits) {
        const wchar_t upper = toUpper(c);
        const unsigned digit = isDigit(c) ? static_cast<unsigned>(c - L'0')
                               : upper >= L'A' && upper <= L'F'
                                   ? static_cast<unsigned>(upper - L'A' + 10)
                                   : base;
        bits = bits * base + digit;
        if (digit >= base || bits > std::numeric_limits<uint32_t>::max()) {
            return std::nullopt;
        }
    }
    return exact(static_cast<int32_t>(bits));
}

std::optional<Number> exactOfFloating(const Number& number) {
    if (!std::isfinite(number.floating)) {
        return std::nullopt;
    }
    const Digits digits = digitsOf(number.floating, number.digits);
    NumberText text;
    text.negative = digits.negative;
    text.digits = digits.text;
    int decimals = static_cast<int>(digits.text.size()) - 1 - digits.exponent;
    for (; decimals < 0 && text.digits.size() < exactDigits; ++decimals) {
        text.digits += '0';
    }
    if (decimals < 0) {
        return std::nullopt;
    }
    text.decimals = static_cast<size_t>(decimals);
    return exactOf(text);
}

}  // namespace

Digits digitsOf(double number, int digits) {
    Digits result;
    result.negative = number < 0;
    char text[64];
    const auto end = std::to_chars(text, text + sizeof(text), std::abs(number),
                                   std::chars_format::scientific, digits - 1);
    const std::string_view written(text, static_cast<size_t>(end.ptr - text));
    const size_t mark = written.find('e');
    for (const char c : written.substr(0, mark)) {
        if (c != '.') {
            result.text += c;
        }
    }
    result.text.erase(result.text.find_last_not_of('0') + 1);
    if (result.text.empty()) {
        return {false, "0", 0};
    }
    const bool isPositive = written[mark + 1] == '+';  // which from_chars() does not read
    std::from_chars(text + mark + (isPositive ? 2 : 1), end.ptr, result.exponent);
    return result;
}

std::optional<Number> numberOf(const Value& value) {
    struct Visitor {
        std::optional<Number> operator()(bool truth) const { return exact(truth ? -1 : 0); }
        std::optional<Number> operator()(uint8_t number) const { return exact(number); }
        std::optional<Number> operator()(int16_t number) const { return exact(number); }
        std::optional<Number> operator()(int32_t number) const { return exact(number); }
        std::optional<Number> operator()(int64_t number) const { return exact(number); }
        std::optional<Number> operator()(Currency number) const { return exact(number.scaled, 4); }
        std::optional<Number> operator()(float number) const {
            return floatingNumber(number, floatDigits);
        }
        std::optional<Number> operator()(double number) const { return floatingNumber(number); }
        std::optional<Number> operator()(Date date) const { return floatingNumber(date.days); }
        std::optional<Number> operator()(const Decimal& number) const { return exact(number); }
        std::optional<Number> operator()(const std::wstring& text) const {
            return parseNumber(text);
        }
        std::optional<Number> operator()(std::monostate) const { return std::nullopt; }
        std::optional<Number> operator()(const Bytes&) const { return std::nullopt; }
        std::optional<Number> operator()(const Guid&) const { return std::nullopt; }
    };
    return std::visit(Visitor(), value);
}

std::optional<Number> parseNumber(std::wstring_view text) {
    const std::wstring_view inner = trimmed(text);
    if (inner.size() > 1 && inner[0] == L'&') {
        const wchar_t mark = toUpper(inner[1]);
        return mark == L'H'   ? parseBits(inner.substr(2), 16)
               : mark == L'O' ? parseBits(inner.substr(2), 8)
                              : std::nullopt;
    }
    NumberParser parser(inner);
    if (!parser.parse()) {
        return std::nullopt;
    }
    const NumberText& parts = parser.result();
    if (parts.digits.empty()) {
        return exact(0);
    }
    const bool fits = parts.digits.size() <= exactDigits && parts.decimals <= exactDigits;
    return fits && !parts.hasExponent ? exactOf(parts) : floatingOf(parts);
}

bool rescale(Number& number, unsigned scale) {
    if (!number.isExact) {
        const std::optional<Number> made = exactOfFloating(number);
        if (!made) {
            return false;
        }
        number = *made;
    }
    for (; number.scale < scale && number.magnitude != 0; ++number.scale) {
        const std::optional<Magnitude> more = timesTen(number.magnitude);
        if (!more) {
            return false;
        }
        number.magnitude = *more;
    }
    if (number.scale > scale + exactDigits) {
        number.magnitude = 0;
    } else if (number.scale > scale) {
        Magnitude divisor = 1;
        for (unsigned i = scale; i < number.scale; ++i) {
            divisor *= 10;  // to at most 10^38
        }
        const Magnitude rest = number.magnitude % divisor;
        number.magnitude /= divisor;
        const Magnitude half = divisor / 2;
        if (rest > half || (rest == half && (number.magnitude & 1) != 0)) {
            ++number.magnitude;
        }
    }
    number.scale = scale;
    number.negative = number.negative && number.magnitude != 0;
    return true;
}

double floatingOf(const Number& number) {
    if (!number.isExact) {
        return number.floating;
    }
    constexpr Magnitude exactDouble = Magnitude(1) << 53;
    constexpr unsigned exactPower = 22;  // of ten that a double holds
    double result = 0;
    if (number.scale == 0 && number.magnitude <= std::numeric_limits<uint64_t>::max()) {
        result = static_cast<double>(static_cast<uint64_t>(number.magnitude));
    } else if (number.magnitude <= exactDouble && number.scale <= exactPower) {
        double power = 1;
        for (unsigned i = 0; i < number.scale; ++i) {
            power *= 10;
        }
        result = static_cast<double>(static_cast<uint64_t>(number.magnitude)) / power;
    } else {
        std::string text;
        for (Magnitude rest = number.magnitude; rest != 0; rest /= 10) {
            text += static_cast<char>('0' + static_cast<int>(rest % 10));
        }
        std::reverse(text.begin(), text.end());
        text += "e-" + std::to_string(number.scale);
        std::from_chars(text.data(), text.data() + text.size(), result);
    }
    return number.negative ? -result : result;
}

std::optional<int64_t> wholeOf(Number number, int64_t smallest, int64_t largest) {
    if (!number.isExact) {
        // Beyond this a double is whole, but no int64_t has it.
        constexpr double limit = 9223372036854775808.0;
        const double whole = std::nearbyint(number.floating);
        if (!(whole >= -limit && whole < limit)) {
            return std::nullopt;
        }
        number = exact(static_cast<int64_t>(whole));
    } else if (!rescale(number, 0)) {
        return std::nullopt;
    }
    const Magnitude room = number.negative ? Magnitude(0 - static_cast<uint64_t>(smallest))
                                           : Magnitude(static_cast<uint64_t>(largest));
    if (number.magnitude > room || (number.negative && smallest >= 0)) {
        return std::nullopt;
    }
    const auto bits = static_cast<uint64_t>(number.magnitude);
    return static_cast<int64_t>(number.negative ? 0 - bits : bits);
}

}  // namespace sg::jet::numbers
