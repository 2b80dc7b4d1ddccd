#pragma once

#include <cmath>
#include <cstdint>

#include "base/numbers.h"

namespace sg::dwg {

// A moment, or a span of time, as files hold it: whole days and what is left in milliseconds. Days
// that no file can hold become the nearest that it can.
struct FileTime {
    int32_t days = 0;
    int32_t milliseconds = 0;  // under a day

    static FileTime of(double days) {
        const double whole = std::floor(days);
        const double rest = std::round((days - whole) * kADay);
        // A rest that rounds up to a day belongs to the next one.
        if (rest >= kADay) return {wholeOf<int32_t>(whole + 1), 0};
        return {wholeOf<int32_t>(whole), wholeOf<int32_t>(rest)};
    }
    double inDays() const { return days + milliseconds / kADay; }

  private:
    static constexpr double kADay = 86'400'000;
};

}  // namespace sg::dwg
