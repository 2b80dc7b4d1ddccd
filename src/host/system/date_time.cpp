#include "host/system/date_time.h"

#include <ctime>

namespace sg {
namespace {

DateTime broken(std::chrono::system_clock::time_point time,
                std::tm* (*split)(const std::time_t*, std::tm*)) {
    using namespace std::chrono;
    const auto whole = floor<seconds>(time);
    const std::time_t count = system_clock::to_time_t(whole);
    std::tm parts{};
    split(&count, &parts);
    return {parts.tm_year + 1900,
            parts.tm_mon + 1,
            parts.tm_mday,
            parts.tm_hour,
            parts.tm_min,
            parts.tm_sec,
            static_cast<int>(duration_cast<milliseconds>(time - whole).count())};
}

}  // namespace

DateTime localTime(std::chrono::system_clock::time_point time) {
    return broken(time, &::localtime_r);
}

DateTime universalTime(std::chrono::system_clock::time_point time) {
    return broken(time, &::gmtime_r);
}

double julianDate(const DateTime& time) {
    using namespace std::chrono;
    const sys_days date = year(time.year) / time.month / time.day;
    constexpr int kJulianDayOf1970 = 2440588;
    const double seconds =
        time.hour * 3600.0 + time.minute * 60.0 + time.second + time.millisecond / 1000.0;
    return kJulianDayOf1970 + date.time_since_epoch().count() + seconds / 86400.0;
}

double calendarDate(const DateTime& time) {
    const double date = time.year * 10000.0 + time.month * 100.0 + time.day;
    const double clock =
        time.hour * 10000.0 + time.minute * 100.0 + time.second + time.millisecond / 1000.0;
    return date + clock / 1000000.0;
}

}  // namespace sg
