#include "app/field_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "base/encoding.h"
#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::app {
namespace {

constexpr size_t kShown = 40;         // bytes of a field in a message
constexpr size_t kLongestWord = 400;  // of numbers, dates and the like

std::string_view withoutBlanks(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

[[noreturn]] void refuse(std::string_view text, const jet::Column& column, const wchar_t* what) {
    const bool isShort = text.size() <= kShown;
    // A character that is cut through becomes U+FFFD.
    const std::wstring shown = fromUtf8(text.substr(0, kShown)) + (isShort ? L"" : L"...");
    throw jet::Error(jet::ConversionError, {column.name},
                     {.detail = L"\"" + shown + L"\" is no " + what});
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool areDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

// A number taken apart: [-]WHOLE[.FRACTION][e[+|-]EXPONENT].
struct Number {
    std::string_view whole, fraction, exponent;
    bool isNumber = false;
};

Number numberOf(std::string_view text) {
    Number number;
    if (text.starts_with('-')) text.remove_prefix(1);
    const size_t e = text.find_first_of("eE");
    if (e != std::string_view::npos) {
        number.exponent = text.substr(e + 1);
        std::string_view digits = number.exponent;
        if (digits.starts_with('-') || digits.starts_with('+')) digits.remove_prefix(1);
        if (!areDigits(digits)) return number;
        text = text.substr(0, e);
    }
    const size_t point = text.find('.');
    number.whole = text.substr(0, point);
    if (point != std::string_view::npos) {
        number.fraction = text.substr(point + 1);
        if (!areDigits(number.fraction)) return number;
    }
    number.isNumber = areDigits(number.whole);
    return number;
}

template <class T>
bool parse(std::string_view text, T& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// "inf" and "nan" too, as numbers are written that are none. False for what is too large.
template <class T>
bool parseFloating(std::string_view text, T& number) {
    return (numberOf(text).isNumber || text == "inf" || text == "-inf" || text == "nan" ||
            text == "-nan") &&
           parse(text, number);
}

template <class T>
bool parseWhole(std::string_view text, T& number) {
    if (parse(text, number)) return true;
    double floating = 0;
    if (!numberOf(text).isNumber || !parse(text, floating)) return false;
    // The ends of the types that are smaller than a double's 53 bits.
    if (std::trunc(floating) != floating || floating < std::numeric_limits<T>::min() ||
        floating > std::numeric_limits<T>::max()) {
        return false;
    }
    number = static_cast<T>(floating);
    return true;
}

template <class T>
void readWhole(std::string_view text, const jet::Column& column, const wchar_t* what,
               jet::Value& into) {
    T number = 0;
    if (!parseWhole(withoutBlanks(text), number)) refuse(text, column, what);
    into = number;
}

template <class T>
void readFloating(std::string_view text, const jet::Column& column, jet::Value& into) {
    T number = 0;
    if (!parseFloating(withoutBlanks(text), number)) refuse(text, column, L"number that fits");
    into = number;
}

bool isWord(std::string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

void readBoolean(std::string_view text, const jet::Column& column, jet::Value& into) {
    const std::string_view word = withoutBlanks(text);
    for (const std::string_view yes : {"1", "-1", "true", "yes", "on"}) {
        if (isWord(word, yes)) {
            into = true;
            return;
        }
    }
    for (const std::string_view no : {"0", "false", "no", "off"}) {
        if (isWord(word, no)) {
            into = false;
            return;
        }
    }
    refuse(text, column, L"1, 0, true or false");
}

// Exact numbers, and identifiers: the engine's own conversion from text, once it is known that the
// text has the one form that is read.
void convert(std::string_view text, const jet::Column& column, const wchar_t* what,
             jet::Value& into) {
    jet::Value value = fromUtf8(withoutBlanks(text));
    try {
        jet::convertTo(column, value);
    } catch (const jet::Error&) {
        refuse(text, column, what);
    }
    into = std::move(value);
}

void readExact(std::string_view text, const jet::Column& column, jet::Value& into) {
    const std::string_view word = withoutBlanks(text);
    if (word.size() > kLongestWord || !numberOf(word).isNumber) {
        refuse(text, column, L"number");
    }
    convert(text, column, L"number that fits", into);
}

// "2017-01-31", and whether something may stand behind it.
bool beginsWithDate(std::string_view text) {
    constexpr std::string_view form = "0000-00-00";
    if (text.size() < form.size()) return false;
    for (size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '0' ? !isDigit(text[i]) : text[i] != form[i]) return false;
    }
    return text.size() == form.size() || text[form.size()] == ' ' || text[form.size()] == 'T';
}

bool parseDate(std::string_view text, jet::Date& date) {
    std::array<wchar_t, 40> wide;
    if (text.size() > wide.size()) return false;
    std::copy(text.begin(), text.end(), wide.begin());
    return jet::parseDate({wide.data(), text.size()}, date);
}

void readDate(std::string_view text, const jet::Column& column, jet::Value& into) {
    const std::string_view word = withoutBlanks(text);
    const bool isTime = word.find(':') <= 2 && word.find_first_of("-/") == std::string_view::npos;
    jet::Date date;
    if ((!isTime && !beginsWithDate(word)) || !parseDate(word, date)) {
        refuse(text, column, L"date as 2017-01-31 14:30:00");
    }
    into = date;
}

// The memory of a text that is there already is used again.
void readText(std::string_view text, jet::Value& into) {
    std::wstring* held = std::get_if<std::wstring>(&into);
    if (held == nullptr) held = &into.emplace<std::wstring>();
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        held->assign(text.begin(), text.end());
    } else {
        *held = fromUtf8(text);
    }
}

int hexadecimal(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

void readBytes(std::string_view text, const jet::Column& column, jet::Value& into) {
    const std::string_view digits = withoutBlanks(text);
    jet::Bytes bytes(digits.size() / 2);
    bool isSound = digits.size() % 2 == 0;
    for (size_t i = 0; i < bytes.size() && isSound; ++i) {
        const int high = hexadecimal(digits[2 * i]);
        const int low = hexadecimal(digits[2 * i + 1]);
        isSound = high >= 0 && low >= 0;
        bytes[i] = static_cast<uint8_t>(high * 16 + low);
    }
    if (!isSound) refuse(text, column, L"row of hexadecimal digits, two for each byte");
    into = std::move(bytes);
}

}  // namespace

void readField(std::string_view text, bool isNull, const jet::Column& column, jet::Value& into) {
    if (isNull) {
        into = std::monostate();
        return;
    }
    switch (column.type) {
        case jet::ColumnType::Boolean:
            return readBoolean(text, column, into);
        case jet::ColumnType::Byte:
            return readWhole<uint8_t>(text, column, L"whole number from 0 to 255", into);
        case jet::ColumnType::Integer:
            return readWhole<int16_t>(text, column, L"whole number from -32768 to 32767", into);
        case jet::ColumnType::Long:
            return readWhole<int32_t>(text, column, L"whole number from -2147483648 to 2147483647",
                                      into);
        case jet::ColumnType::Single:
            return readFloating<float>(text, column, into);
        case jet::ColumnType::Double:
            return readFloating<double>(text, column, into);
        case jet::ColumnType::Currency:
        case jet::ColumnType::Numeric:
            return readExact(text, column, into);
        case jet::ColumnType::Date:
            return readDate(text, column, into);
        case jet::ColumnType::Guid:
            return convert(text, column, L"identifier", into);
        case jet::ColumnType::Binary:
        case jet::ColumnType::Ole:
            return readBytes(text, column, into);
        case jet::ColumnType::Text:
        case jet::ColumnType::Memo:
        case jet::ColumnType::Complex:  // these are refused by the engine
        case jet::ColumnType::BigInteger:
        case jet::ColumnType::DateTimeExtended:
            return readText(text, into);
    }
}

// --- guessing ---

namespace {

constexpr size_t kTextSize = 255;  // UTF-16 units in a Text column

// A type, and whether it holds a value as it is written.
struct Candidate {
    jet::ColumnType type;
    bool (*holds)(std::string_view text);
};

bool isBoolean(std::string_view text) {
    return isWord(text, "true") || isWord(text, "false");
}

// A zero in front belongs to a postal code or the like, which is no number.
bool isPlainNumber(const Number& number) {
    return number.isNumber && (number.whole.size() == 1 || number.whole[0] != '0');
}

bool isLong(std::string_view text) {
    int32_t value = 0;
    const Number number = numberOf(text);
    return isPlainNumber(number) && text != "-0" && parse(text, value);
}

bool isCurrency(std::string_view text) {
    constexpr size_t digits = 4;
    const Number number = numberOf(text);
    if (!isPlainNumber(number) || number.fraction.size() != digits || !number.exponent.empty()) {
        return false;
    }
    std::string scaled(text);
    scaled.erase(scaled.size() - digits - 1, 1);
    int64_t value = 0;
    return parse(scaled, value);
}

// Those that tell how exact a number is.
size_t significantDigits(const Number& number) {
    if (number.whole != "0") return number.whole.size() + number.fraction.size();
    return number.fraction.size() -
           std::min(number.fraction.find_first_not_of('0'), number.fraction.size());
}

// Digits that a double would lose are those of an identification, when they are all before the
// point.
bool isDouble(std::string_view text) {
    double value = 0;
    const Number number = numberOf(text);
    const bool isWhole = number.fraction.empty() && number.exponent.empty();
    constexpr int sure = std::numeric_limits<double>::digits10;
    constexpr int most = std::numeric_limits<double>::max_digits10;
    return isPlainNumber(number) &&
           significantDigits(number) <= static_cast<size_t>(isWhole ? sure : most) &&
           parse(text, value);
}

bool isDate(std::string_view text) {
    jet::Date date;
    return beginsWithDate(text) && parseDate(text, date);
}

bool isGuid(std::string_view text) {
    constexpr std::string_view form = "{00000000-0000-0000-0000-000000000000}";
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [](char c, char f) { return f == '0' ? hexadecimal(c) >= 0 : c == f; });
}

constexpr Candidate candidates[] = {
    {jet::ColumnType::Boolean, isBoolean},   {jet::ColumnType::Long, isLong},
    {jet::ColumnType::Currency, isCurrency}, {jet::ColumnType::Double, isDouble},
    {jet::ColumnType::Date, isDate},         {jet::ColumnType::Guid, isGuid},
};

bool fitsInText(std::string_view text) {
    return text.size() <= kTextSize || toUtf16(fromUtf8(text)).size() <= kTextSize;
}

}  // namespace

void ColumnGuess::add(std::string_view text, bool isNull) {
    if (isNull) {
        excluded_ |= 1;  // a Boolean is never Null
        return;
    }
    hasValue_ = true;
    unsigned bit = 1;
    for (const Candidate& candidate : candidates) {
        if ((excluded_ & bit) == 0 && !candidate.holds(text)) excluded_ |= bit;
        bit <<= 1;
    }
    isLong_ = isLong_ || !fitsInText(text);
}

jet::ColumnDesign ColumnGuess::column(std::wstring name) const {
    jet::ColumnDesign column;
    column.name = std::move(name);
    column.type = isLong_ ? jet::ColumnType::Memo : jet::ColumnType::Text;
    unsigned bit = 1;
    for (const Candidate& candidate : candidates) {
        if (hasValue_ && (excluded_ & bit) == 0) {
            column.type = candidate.type;
            break;
        }
        bit <<= 1;
    }
    return column;
}

}  // namespace sg::app
