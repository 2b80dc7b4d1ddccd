#pragma once

#include <cmath>

namespace sg::model {

// The place between `low` and `high`, at which `f` has different signs, where it crosses zero;
// `atLow` is f(low). False position with halving where that is slow (the Illinois rule).
template <class Function>
double bisect(const Function& f, double low, double high, double atLow) {
    double atHigh = f(high);
    for (int step = 0; step < 200; ++step) {
        double middle = high - atHigh * (high - low) / (atHigh - atLow);
        if (!(middle > low && middle < high) || step % 8 == 7) middle = low + (high - low) / 2;
        if (middle <= low || middle >= high) break;
        const double value = f(middle);
        if (value == 0) return middle;
        if ((value < 0) == (atLow < 0)) {
            low = middle;
            atLow = value;
            atHigh /= 2;
        } else {
            high = middle;
            atHigh = value;
            atLow /= 2;
        }
        if (high - low <= 4e-16 * (std::abs(low) + std::abs(high))) break;
    }
    return low + (high - low) / 2;
}

// The parameter of `piece` at this distance behind `low`, not past `high`: Newton's method on the
// length, kept between the bounds by halving.
template <class Curve>
double paramBetween(const Curve& piece, double low, double high, double distance) {
    const double start = low;
    double t = low + (high - low) * (distance / piece.length(low, high));
    if (!std::isfinite(t)) return low;
    for (int step = 0; step < 100; ++step) {
        const double off = piece.length(start, t) - distance;
        (off > 0 ? high : low) = t;
        const double speed = piece.values(t).first.length();
        double next = t - off / speed;
        if (!(next > low && next < high)) next = low + (high - low) / 2;
        const double change = std::abs(next - t);
        t = next;
        if (change <= 4e-16 * (std::abs(low) + std::abs(high))) break;
    }
    return t;
}

}  // namespace sg::model
