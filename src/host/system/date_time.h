#pragma once

#include <chrono>

#include "base/export.h"

// Times as the system variables DATE and CDATE and their relatives hold them.
namespace sg {

struct DateTime {
    int year = 0, month = 1, day = 1;  // of the Gregorian calendar
    int hour = 0, minute = 0, second = 0, millisecond = 0;
};

SG_API DateTime localTime(std::chrono::system_clock::time_point time);
SG_API DateTime universalTime(std::chrono::system_clock::time_point time);

// The Julian day number of the date, plus the part of the day that has passed since midnight:
// 2457785.5 is noon of 31 January 2017. The number changes at midnight, not at noon.
SG_API double julianDate(const DateTime& time);

// YYYYMMDD.HHMMSSmmm: 20170131.143000250 is half past two and a quarter of a second.
SG_API double calendarDate(const DateTime& time);

}  // namespace sg
