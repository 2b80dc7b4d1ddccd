// Functions of dates and times.

#include <algorithm>
#include <cmath>

#include "host/jet/expression/expression_dates.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::detail {
namespace {

using Arguments = std::span<Value>;

constexpr int64_t secondsOfDay = 86400;

Value small(int64_t value) {
    return static_cast<int16_t>(value);
}

// --- the clock ---

Value nowFunction(Evaluation&, Arguments) {
    return now();
}

Value dateFunction(Evaluation&, Arguments) {
    return Date{std::trunc(now().days)};
}

Date timeOf(Date date) {
    return dateOfMoment(momentOf(date).second);
}

Value timeFunction(Evaluation&, Arguments) {
    return timeOf(now());
}

Value timer(Evaluation&, Arguments) {
    return static_cast<float>(momentOf(now()).second);
}

// --- parts ---

int firstDayArgument(Arguments arguments, size_t place) {
    const int32_t given = wholeOr(arguments, place, 1);
    if (given < 0 || given > 7) {
        throwInvalidArgument(L"first day of the week");
    }
    return std::max(given, 1);  // 0 is the system's, Sunday here
}

int firstWeekArgument(Arguments arguments, size_t place) {
    const int32_t given = wholeOr(arguments, place, 1);
    if (given < 0 || given > 3) {
        throwInvalidArgument(L"first week of the year");
    }
    return std::max(given, 1);
}

template <int DateParts::*Part>
Value part(Evaluation&, Arguments arguments) {
    return small(partsOf(dateOf(arguments[0])).*Part);
}

Value weekday(Evaluation&, Arguments arguments) {
    return small(weekdayOf(momentOf(dateOf(arguments[0])).day, firstDayArgument(arguments, 1)));
}

Interval intervalArgument(const Value& value) {
    const std::optional<Interval> interval = intervalOf(toInvariantText(value));
    if (!interval) {
        throwInvalidArgument(L"interval");
    }
    return *interval;
}

Value datePart(Evaluation&, Arguments arguments) {
    const Interval interval = intervalArgument(arguments[0]);
    const Date date = dateOf(arguments[1]);
    const int firstDay = firstDayArgument(arguments, 2);
    const int firstWeek = firstWeekArgument(arguments, 3);
    const DateParts parts = partsOf(date);
    const int64_t day = momentOf(date).day;
    switch (interval) {
        case Interval::Year:
            return small(parts.year);
        case Interval::Quarter:
            return small((parts.month + 2) / 3);
        case Interval::Month:
            return small(parts.month);
        case Interval::DayOfYear:
            return small(dayOfYear(parts, day));
        case Interval::Day:
            return small(parts.day);
        case Interval::Weekday:
            return small(weekdayOf(day, firstDay));
        case Interval::Week:
            return small(weekOfYear(day, firstDay, firstWeek));
        case Interval::Hour:
            return small(parts.hour);
        case Interval::Minute:
            return small(parts.minute);
        case Interval::Second:
            return small(parts.second);
    }
    return {};
}

// --- arithmetic ---

// `months` later, on the month's last day where the day is missing in it.
Value addMonths(Date date, int64_t months) {
    const DateParts parts = partsOf(date);
    const int64_t first = dayOf(parts.year, parts.month + months, 1);
    const DateParts target = partsOf({static_cast<double>(first)});
    const int day = std::min(parts.day, daysInMonth(target.year, target.month));
    return dateOfMoment((first + day - 1) * secondsOfDay + momentOf(date).second);
}

Value dateAdd(Evaluation&, Arguments arguments) {
    const Interval interval = intervalArgument(arguments[0]);
    const int64_t count = wholeOf(arguments[1]);
    const Date date = dateOf(arguments[2]);
    const int64_t from = momentOf(date).seconds();
    switch (interval) {
        case Interval::Year:
            return addMonths(date, count * 12);
        case Interval::Quarter:
            return addMonths(date, count * 3);
        case Interval::Month:
            return addMonths(date, count);
        case Interval::Week:
            return dateOfMoment(from + count * 7 * secondsOfDay);
        case Interval::Hour:
            return dateOfMoment(from + count * 3600);
        case Interval::Minute:
            return dateOfMoment(from + count * 60);
        case Interval::Second:
            return dateOfMoment(from + count);
        default:
            return dateOfMoment(from + count * secondsOfDay);
    }
}

// How many boundaries of the interval lie between the two; the time is the second's, so that both
// are counted from a moment before every date.
int64_t boundaries(Date from, Date to, int64_t seconds) {
    constexpr int64_t before = -657435 * secondsOfDay;
    return (momentOf(to).seconds() - before) / seconds -
           (momentOf(from).seconds() - before) / seconds;
}

Value dateDiff(Evaluation&, Arguments arguments) {
    const Interval interval = intervalArgument(arguments[0]);
    const Date from = dateOf(arguments[1]);
    const Date to = dateOf(arguments[2]);
    const int firstDay = firstDayArgument(arguments, 3);
    firstWeekArgument(arguments, 4);
    const DateParts a = partsOf(from);
    const DateParts b = partsOf(to);
    const int64_t firstOf = momentOf(from).day;
    const int64_t lastOf = momentOf(to).day;
    int64_t count = 0;
    switch (interval) {
        case Interval::Year:
            count = b.year - a.year;
            break;
        case Interval::Quarter:
            count = (b.year - a.year) * 4 + (b.month - 1) / 3 - (a.month - 1) / 3;
            break;
        case Interval::Month:
            count = (b.year - a.year) * 12 + b.month - a.month;
            break;
        case Interval::Weekday:
            count = (lastOf - firstOf) / 7;
            break;
        case Interval::Week:
            count =
                (lastOf - weekdayOf(lastOf, firstDay) - firstOf + weekdayOf(firstOf, firstDay)) / 7;
            break;
        case Interval::Hour:
            count = boundaries(from, to, 3600);
            break;
        case Interval::Minute:
            count = boundaries(from, to, 60);
            break;
        case Interval::Second:
            count = boundaries(from, to, 1);
            break;
        default:
            count = lastOf - firstOf;
            break;
    }
    if (count != static_cast<int32_t>(count)) {
        throwConversion(L"overflow");
    }
    return static_cast<int32_t>(count);
}

// --- making dates ---

Value dateSerial(Evaluation&, Arguments arguments) {
    int64_t year = wholeOf(arguments[0]);
    if (year >= 0 && year < 100) {
        year += year < 30 ? 2000 : 1900;
    }
    return Date{static_cast<double>(dayOf(year, wholeOf(arguments[1]), wholeOf(arguments[2])))};
}

Value timeSerial(Evaluation&, Arguments arguments) {
    return dateOfMoment(static_cast<int64_t>(wholeOf(arguments[0])) * 3600 +
                        static_cast<int64_t>(wholeOf(arguments[1])) * 60 + wholeOf(arguments[2]));
}

Value dateValue(Evaluation&, Arguments arguments) {
    return Date{static_cast<double>(momentOf(dateOf(arguments[0])).day)};
}

Value timeValue(Evaluation&, Arguments arguments) {
    return timeOf(dateOf(arguments[0]));
}

// --- names ---

Value named(std::wstring_view name, Arguments arguments) {
    const bool isShort = arguments.size() > 1 && truthOf(arguments[1]);
    return std::wstring(isShort ? name.substr(0, 3) : name);
}

Value monthNameFunction(Evaluation&, Arguments arguments) {
    const int32_t month = wholeOf(arguments[0]);
    if (month < 1 || month > 12) {
        throwInvalidArgument(L"month");
    }
    return named(monthName(month), arguments);
}

Value weekdayNameFunction(Evaluation&, Arguments arguments) {
    const int32_t weekday = wholeOf(arguments[0]);
    if (weekday < 1 || weekday > 7) {
        throwInvalidArgument(L"day of the week");
    }
    const int firstDay = firstDayArgument(arguments, 2);
    return named(weekdayName((weekday + firstDay - 2) % 7 + 1), arguments);
}

constexpr Function functions[] = {
    {L"Date", 0, 0, NullArguments::GiveNull, dateFunction},
    {L"DateAdd", 3, 3, NullArguments::GiveNull, dateAdd},
    {L"DateDiff", 3, 5, NullArguments::GiveNull, dateDiff},
    {L"DatePart", 2, 4, NullArguments::GiveNull, datePart},
    {L"DateSerial", 3, 3, NullArguments::GiveNull, dateSerial},
    {L"DateValue", 1, 1, NullArguments::GiveNull, dateValue},
    {L"Day", 1, 1, NullArguments::GiveNull, part<&DateParts::day>},
    {L"Hour", 1, 1, NullArguments::GiveNull, part<&DateParts::hour>},
    {L"Minute", 1, 1, NullArguments::GiveNull, part<&DateParts::minute>},
    {L"Month", 1, 1, NullArguments::GiveNull, part<&DateParts::month>},
    {L"MonthName", 1, 2, NullArguments::GiveNull, monthNameFunction},
    {L"Now", 0, 0, NullArguments::GiveNull, nowFunction},
    {L"Second", 1, 1, NullArguments::GiveNull, part<&DateParts::second>},
    {L"Time", 0, 0, NullArguments::GiveNull, timeFunction},
    {L"TimeSerial", 3, 3, NullArguments::GiveNull, timeSerial},
    {L"Timer", 0, 0, NullArguments::GiveNull, timer},
    {L"TimeValue", 1, 1, NullArguments::GiveNull, timeValue},
    {L"Weekday", 1, 2, NullArguments::GiveNull, weekday},
    {L"WeekdayName", 1, 3, NullArguments::GiveNull, weekdayNameFunction},
    {L"Year", 1, 1, NullArguments::GiveNull, part<&DateParts::year>},
};

}  // namespace

std::span<const Function> dateFunctions() {
    return functions;
}

}  // namespace sg::jet::detail
