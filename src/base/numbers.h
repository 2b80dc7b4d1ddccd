#pragma once

#include <limits>
#include <type_traits>

namespace sg {

// The whole part of a real number; what the type cannot hold becomes its nearest limit, and no
// number 0.
template <class Whole>
constexpr Whole wholeOf(double number) {
    static_assert(std::is_integral_v<Whole>);
    using Limits = std::numeric_limits<Whole>;
    if (number != number) return 0;
    // Limits of 64 bits are no doubles: the upper one rounds up, to the first that is too large.
    if (number >= static_cast<double>(Limits::max())) return Limits::max();
    if (number <= static_cast<double>(Limits::min())) return Limits::min();
    return static_cast<Whole>(number);
}

}  // namespace sg
