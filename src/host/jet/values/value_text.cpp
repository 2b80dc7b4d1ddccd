// Values as text, and dates from it: parts of value_convert.h.

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/text.h"
#include "host/jet/values/text_codec.h"
#include "host/jet/values/value_convert.h"
#include "host/jet/values/value_number.h"

namespace sg::jet {
namespace {

constexpr int firstYear = 100;
constexpr int lastYear = 9999;
constexpr int centuryTurn = 30;  // years of two digits below it are of 2000, the others of 1900

std::wstring widened(std::string_view text) {
    return {text.begin(), text.end()};
}

// Fixed notation, unless it takes more decimals than there are digits or more zeros in front.
std::wstring textOf(double number, int precision) {
    if (std::isnan(number)) {
        return L"1.#QNAN";
    }
    if (std::isinf(number)) {
        return number < 0 ? L"-1.#INF" : L"1.#INF";
    }
    const numbers::Digits digits = numbers::digitsOf(number, precision);
    std::string text = digits.text;
    const int exponent = digits.exponent;
    const int decimals = static_cast<int>(text.size()) - 1 - exponent;
    if (exponent < -4 || exponent >= precision || decimals > precision) {
        if (text.size() > 1) {
            text.insert(1, 1, '.');
        }
        const std::string power = std::to_string(std::abs(exponent));
        text += exponent < 0 ? "E-" : "E+";
        text += power.size() < 2 ? "0" + power : power;
    } else if (exponent < 0) {
        text.insert(0, "0." + std::string(static_cast<size_t>(-exponent - 1), '0'));
    } else if (decimals > 0) {
        text.insert(static_cast<size_t>(exponent) + 1, 1, '.');
    } else {
        text.append(static_cast<size_t>(-decimals), '0');
    }
    return widened(digits.negative ? "-" + text : text);
}

// A number with a point, without the zeros that end it.
std::wstring withoutZeros(std::wstring text) {
    if (text.find(L'.') != std::wstring::npos) {
        text.erase(text.find_last_not_of(L'0') + 1);
        if (text.back() == L'.') {
            text.pop_back();
        }
    }
    return text == L"-0" ? L"0" : text;
}

std::wstring padded(int number, size_t width) {
    const std::wstring text = std::to_wstring(number);
    return text.size() < width ? std::wstring(width - text.size(), L'0') + text : text;
}

std::wstring textOf(Date date) {
    const DateParts p = partsOf(date);
    const bool hasDate = p.year != 1899 || p.month != 12 || p.day != 30;
    const bool hasTime = p.hour != 0 || p.minute != 0 || p.second != 0;
    std::wstring text;
    if (hasDate) {
        text = std::to_wstring(p.month) + L"/" + std::to_wstring(p.day) + L"/" + padded(p.year, 4);
    }
    if (hasTime || !hasDate) {
        const int hour = p.hour % 12 == 0 ? 12 : p.hour % 12;
        text += hasDate ? L" " : L"";
        text += std::to_wstring(hour) + L":" + padded(p.minute, 2) + L":" + padded(p.second, 2) +
                (p.hour < 12 ? L" AM" : L" PM");
    }
    return text;
}

std::wstring textOf(const Bytes& bytes) {
    return decodeName({bytes.data(), bytes.size()}, formatOf(Version::Jet4));
}

bool isLeapYear(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysOfMonth(int year, int month) {
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

// Days from 1899-12-30; counted from March, so that the leap day ends a year.
int64_t dayNumber(const DateParts& parts) {
    const int64_t year = parts.month <= 2 ? parts.year - 1 : parts.year;
    const int64_t month = parts.month <= 2 ? parts.month + 9 : parts.month - 3;
    const int64_t dayOfYear = (153 * month + 2) / 5 + parts.day - 1;
    return year * 365 + year / 4 - year / 100 + year / 400 + dayOfYear - 693899;
}

// Takes a date and time apart from left to right; each step answers false where the text is none.
class DateParser {
  public:
    explicit DateParser(std::wstring_view text) : rest_(trimmed(text)) {}

    bool parse(Date& date) {
        if (rest_.empty()) {
            return false;
        }
        DateParts parts{1899, 12, 30, 0, 0, 0};
        const bool hasName = namesMonth();
        const bool hasDate = hasName || rest_.find_first_of(L"/-") != std::wstring_view::npos;
        if (hasDate && !(hasName ? takeNamedDate(parts) : takeDate(parts))) {
            return false;
        }
        if (!rest_.empty() && (!takeBreak(hasDate) || !takeTime(parts))) {
            return false;
        }
        if (!rest_.empty() || !dateOfParts(parts, date)) {
            return false;
        }
        const double fraction = fraction_ / 86400;
        date.days += date.days < 0 ? -fraction : fraction;
        return true;
    }

  private:
    wchar_t front() const { return rest_.empty() ? L'\0' : rest_.front(); }
    bool take(wchar_t c) {
        if (front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }
    bool isAtDigit() const { return front() >= L'0' && front() <= L'9'; }

    // One to `most` digits; `count` is how many.
    bool takeNumber(size_t most, int& number, size_t& count) {
        number = 0;
        count = 0;
        for (; isAtDigit(); ++count, rest_.remove_prefix(1)) {
            if (count == most) {
                return false;
            }
            number = number * 10 + static_cast<int>(front() - L'0');
        }
        return count > 0;
    }
    bool takeNumber(size_t most, int& number) {
        size_t count = 0;
        return takeNumber(most, number, count);
    }

    // Year first when that has four digits, else month, day, year; where there is no such month,
    // the day is first.
    bool takeDate(DateParts& parts) {
        int first = 0;
        size_t digits = 0;
        if (!takeNumber(4, first, digits)) {
            return false;
        }
        const wchar_t mark = front();
        if (mark != L'/' && mark != L'-') {
            return false;
        }
        if (digits == 4) {
            parts.year = first;
            return take(mark) && takeNumber(2, parts.month) && take(mark) &&
                   takeNumber(2, parts.day);
        }
        parts.month = first;
        if (digits > 2 || !take(mark) || !takeNumber(2, parts.day) || !take(mark) ||
            !takeYear(parts.year)) {
            return false;
        }
        if (parts.month > 12) {
            std::swap(parts.month, parts.day);
        }
        return true;
    }

    // The word that begins the rest.
    std::wstring_view word() const {
        size_t size = 0;
        while (size < rest_.size() && toUpper(rest_[size]) >= L'A' &&
               toUpper(rest_[size]) <= L'Z') {
            ++size;
        }
        return rest_.substr(0, size);
    }

    // Whether the first word is a month's name.
    bool namesMonth() {
        const std::wstring_view all = rest_;
        while (!rest_.empty() && word().empty()) {
            rest_.remove_prefix(1);
        }
        int month = 0;
        const bool is = takeMonth(month);
        rest_ = all;
        return is;
    }

    // Its whole name, or the first three letters.
    bool takeMonth(int& month) {
        const std::wstring_view given = word();
        for (month = 1; month <= 12; ++month) {
            const std::wstring_view name = monthName(month);
            if (equalIgnoringCase(given, name) || equalIgnoringCase(given, name.substr(0, 3))) {
                rest_.remove_prefix(given.size());
                return true;
            }
        }
        return false;
    }

    // "January 31, 2017", "31 Jan 2017", "31-Jan-2017".
    bool takeNamedDate(DateParts& parts) {
        if (isAtDigit()) {
            return takeNumber(2, parts.day) && takeMark() && takeMonth(parts.month) && takeMark() &&
                   takeYear(parts.year);
        }
        return takeMonth(parts.month) && takeMark() && takeNumber(2, parts.day) && takeMark() &&
               takeYear(parts.year);
    }

    // What stands between the parts of such a date.
    bool takeMark() {
        const size_t size = std::min(rest_.find_first_not_of(L" ,-/"), rest_.size());
        rest_.remove_prefix(size);
        return size > 0;
    }

    bool takeYear(int& year) {
        size_t digits = 0;
        if (!takeNumber(4, year, digits)) {
            return false;
        }
        if (digits <= 2) {
            year += year < centuryTurn ? 2000 : 1900;
        }
        return true;
    }

    // Between a date and a time: blanks, or the "T" of ISO dates.
    bool takeBreak(bool hasDate) {
        if (!hasDate) {
            return true;
        }
        const std::wstring_view before = rest_;
        if (!take(L'T')) {
            rest_ = trimmed(rest_);
        }
        return rest_.size() < before.size();
    }

    bool takeTime(DateParts& parts) {
        if (!takeNumber(2, parts.hour)) {
            return false;
        }
        const bool hasMinutes = take(L':');
        if (hasMinutes && !takeNumber(2, parts.minute)) {
            return false;
        }
        if (hasMinutes && take(L':') && !(takeNumber(2, parts.second) && takeFraction())) {
            return false;
        }
        rest_ = trimmed(rest_);
        const bool isMorning = equalIgnoringCase(rest_, L"AM");
        if (!isMorning && !equalIgnoringCase(rest_, L"PM")) {
            return hasMinutes;
        }
        rest_ = {};
        if (parts.hour < 1 || parts.hour > 12) {
            return false;
        }
        parts.hour = parts.hour % 12 + (isMorning ? 0 : 12);
        return true;
    }

    bool takeFraction() {
        if (!take(L'.')) {
            return true;
        }
        if (!isAtDigit()) {
            return false;
        }
        for (double unit = 0.1; isAtDigit(); unit /= 10, rest_.remove_prefix(1)) {
            fraction_ += unit * static_cast<double>(front() - L'0');
        }
        return true;
    }

    std::wstring_view rest_;
    double fraction_ = 0;  // of a second
};

}  // namespace

std::wstring toInvariantText(const Value& value) {
    struct Visitor {
        std::wstring operator()(std::monostate) const { return {}; }
        std::wstring operator()(bool truth) const { return truth ? L"-1" : L"0"; }
        std::wstring operator()(uint8_t number) const { return std::to_wstring(number); }
        std::wstring operator()(int16_t number) const { return std::to_wstring(number); }
        std::wstring operator()(int32_t number) const { return std::to_wstring(number); }
        std::wstring operator()(int64_t number) const { return std::to_wstring(number); }
        std::wstring operator()(Currency number) const { return withoutZeros(toText(number)); }
        std::wstring operator()(float number) const { return textOf(number, numbers::floatDigits); }
        std::wstring operator()(double number) const {
            return textOf(number, numbers::doubleDigits);
        }
        std::wstring operator()(Date date) const { return textOf(date); }
        std::wstring operator()(const std::wstring& text) const { return text; }
        std::wstring operator()(const Bytes& bytes) const { return textOf(bytes); }
        std::wstring operator()(const Guid& guid) const { return toText(guid); }
        std::wstring operator()(const Decimal& number) const {
            return withoutZeros(toText(number));
        }
    };
    return std::visit(Visitor(), value);
}

bool dateOfParts(const DateParts& parts, Date& date) {
    const bool isDay = parts.year >= firstYear && parts.year <= lastYear && parts.month >= 1 &&
                       parts.month <= 12 && parts.day >= 1 &&
                       parts.day <= daysOfMonth(parts.year, parts.month);
    const bool isTime = parts.hour >= 0 && parts.hour < 24 && parts.minute >= 0 &&
                        parts.minute < 60 && parts.second >= 0 && parts.second < 60;
    if (!isDay || !isTime) {
        return false;
    }
    const auto day = static_cast<double>(dayNumber(parts));
    const double time = (parts.hour * 3600 + parts.minute * 60 + parts.second) / 86400.0;
    date.days = day < 0 ? day - time : day + time;
    return true;
}

std::wstring_view monthName(int month) {
    static constexpr std::wstring_view names[] = {
        L"January", L"February", L"March",     L"April",   L"May",      L"June",
        L"July",    L"August",   L"September", L"October", L"November", L"December"};
    return names[month - 1];
}

bool parseDate(std::wstring_view text, Date& date) {
    return DateParser(text).parse(date);
}

}  // namespace sg::jet
