#pragma once

#include <cmath>
#include <numbers>

namespace sg::model {

// The angle, by whole turns of it, in [from, from + one turn). One that is before `from` by
// rounding alone is `from`.
inline double angleFrom(double angle, double from) {
    constexpr double kTurn = 2 * std::numbers::pi;
    double past = std::fmod(angle - from, kTurn);
    if (past < 0) past += kTurn;
    if (past >= kTurn - 1e-14 * (1 + std::abs(from))) past = 0;
    return from + past;
}

}  // namespace sg::model
