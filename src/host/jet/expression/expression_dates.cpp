#include "host/jet/expression/expression_dates.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <ctime>
#include <iterator>

#include "base/text.h"
#include "host/jet/expression/expression.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace {

std::atomic<Clock> chosenClock{nullptr};

Date systemTime() {
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    if (::localtime_r(&seconds, &local) == nullptr) {
        return {};
    }
    const int64_t day = detail::dayOf(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    return detail::dateOfMoment(day * 86400 + local.tm_hour * 3600 + local.tm_min * 60 +
                                std::min(local.tm_sec, 59));
}

}  // namespace

Clock setExpressionClock(Clock clock) {
    return chosenClock.exchange(clock);
}

namespace detail {
namespace {

constexpr int64_t secondsOfDay = 86400;
constexpr int64_t firstDay = -657434;   // 0100-01-01
constexpr int64_t dayBehind = 2958466;  // 10000-01-01
constexpr int64_t anySunday = -664439;  // before every date

// Rounded down also below zero.
int64_t floorDivided(int64_t a, int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

}  // namespace

Date now() {
    const Clock clock = chosenClock.load();
    return clock != nullptr ? clock() : systemTime();
}

Moment momentOf(Date date) {
    const DateParts parts = partsOf(date);
    return {dayOf(parts.year, parts.month, parts.day),
            parts.hour * 3600 + parts.minute * 60 + parts.second};
}

Date dateOfMoment(int64_t seconds) {
    const int64_t day = floorDivided(seconds, secondsOfDay);
    if (day < firstDay || day >= dayBehind) {
        throwInvalidArgument(L"a date beyond the years 100 to 9999");
    }
    const auto time = static_cast<double>(seconds - day * secondsOfDay) / secondsOfDay;
    const auto whole = static_cast<double>(day);
    return {day < 0 ? whole - time : whole + time};
}

int64_t dayOf(int64_t year, int64_t month, int64_t day) {
    const int64_t months = year * 12 + month - 1;
    const int64_t realYear = floorDivided(months, 12);
    Date first;
    const bool exists = realYear >= 100 && realYear <= 9999 &&
                        std::abs(day) < dayBehind - firstDay &&
                        dateOfParts({.year = static_cast<int>(realYear),
                                     .month = static_cast<int>(months - realYear * 12 + 1),
                                     .day = 1},
                                    first);
    const int64_t result = static_cast<int64_t>(first.days) + day - 1;
    if (!exists || result < firstDay || result >= dayBehind) {
        throwInvalidArgument(L"a date beyond the years 100 to 9999");
    }
    return result;
}

int daysInMonth(int year, int month) {
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return days[month - 1] + (month == 2 && leap ? 1 : 0);
}

int weekdayOf(int64_t day, int firstDayOfWeek) {
    return static_cast<int>((day - anySunday + 8 - firstDayOfWeek) % 7) + 1;
}

int dayOfYear(const DateParts& parts, int64_t day) {
    return static_cast<int>(day - dayOf(parts.year, 1, 1)) + 1;
}

namespace {

// The day on which week 1 of a year begins; it may be in the year before. Counted from the year's
// own first day, which is `newYear`.
int64_t firstWeekStart(int64_t newYear, int firstDayOfWeek, int firstWeek) {
    const int64_t start = newYear - (weekdayOf(newYear, firstDayOfWeek) - 1);
    const int64_t daysOfNewYear = start + 7 - newYear;
    const int64_t needed = firstWeek == 2 ? 4 : firstWeek == 3 ? 7 : 1;
    return daysOfNewYear >= needed ? start : start + 7;
}

}  // namespace

int weekOfYear(int64_t day, int firstDayOfWeek, int firstWeek) {
    const int year = partsOf({static_cast<double>(day)}).year;
    int64_t start = firstWeekStart(dayOf(year, 1, 1), firstDayOfWeek, firstWeek);
    if (day < start) {
        // The last week of the year before; of the first year there is nothing before.
        const int64_t before = year > 100 ? dayOf(year - 1, 1, 1) : dayOf(year, 1, 1) - 365;
        start = firstWeekStart(before, firstDayOfWeek, firstWeek);
    } else if (firstWeek == 2 && year < 9999) {
        const int64_t next = firstWeekStart(dayOf(year + 1, 1, 1), firstDayOfWeek, firstWeek);
        if (day >= next) {
            start = next;
        }
    }
    return static_cast<int>((day - start) / 7) + 1;
}

std::optional<Interval> intervalOf(std::wstring_view text) {
    static constexpr std::wstring_view names[] = {L"yyyy", L"q",  L"m", L"y", L"d",
                                                  L"w",    L"ww", L"h", L"n", L"s"};
    for (size_t i = 0; i < std::size(names); ++i) {
        if (equalIgnoringCase(text, names[i])) {
            return static_cast<Interval>(i);
        }
    }
    return std::nullopt;
}

std::wstring_view weekdayName(int weekday) {
    static constexpr std::wstring_view names[] = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                                  L"Thursday", L"Friday", L"Saturday"};
    return names[weekday - 1];
}

}  // namespace detail
}  // namespace sg::jet
