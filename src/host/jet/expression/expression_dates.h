#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/jet/values/value.h"

// The calendar that the functions of dates work on.
namespace sg::jet::detail {

// Whole days of a date, and its seconds since their midnight, rounded.
struct Moment {
    int64_t day = 0;  // 0 is 1899-12-30
    int64_t second = 0;

    int64_t seconds() const { return day * 86400 + second; }
};
Moment momentOf(Date date);
// Throws InvalidArgument for what is not in the years 100 to 9999.
Date dateOfMoment(int64_t seconds);

// The day of a date, also of months and days beyond their range: month 14 is the next year's
// February, day 0 the last of the month before. Throws InvalidArgument as dateOfMoment().
int64_t dayOf(int64_t year, int64_t month, int64_t day);
int daysInMonth(int year, int month);
// 1 to 7, from the first day of the week on (1 is Sunday, 2 Monday...).
int weekdayOf(int64_t day, int firstDayOfWeek);
int dayOfYear(const DateParts& parts, int64_t day);
// `firstWeek`: the year's first week is 1 that of January 1, 2 the first with four days or more, 3
// the first whole one.
int weekOfYear(int64_t day, int firstDayOfWeek, int firstWeek);

// What DateAdd, DateDiff and DatePart count by.
enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };
// "yyyy", "q", "m", "y", "d", "w", "ww", "h", "n", "s", ignoring case.
std::optional<Interval> intervalOf(std::wstring_view text);

// What the process's clock tells: setExpressionClock().
Date now();

std::wstring_view weekdayName(int weekday);  // 1 is Sunday

}  // namespace sg::jet::detail
