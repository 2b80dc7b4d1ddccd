#pragma once

#include <cmath>

namespace sg::model {

// The 10-point Gauss-Legendre sum of `f` over [from, to].
template <class Function>
double gaussSum(const Function& f, double from, double to) {
    static constexpr double kNodes[] = {0.1488743389816312, 0.4333953941292472, 0.6794095682990244,
                                        0.8650633666889845, 0.9739065285171717};
    static constexpr double kWeights[] = {0.2955242247147529, 0.2692667193099963,
                                          0.2190863625159820, 0.1494513491505806,
                                          0.0666713443086881};
    const double middle = (from + to) / 2;
    const double half = (to - from) / 2;
    double sum = 0;
    for (int i = 0; i < 5; ++i) {
        sum += kWeights[i] * (f(middle - half * kNodes[i]) + f(middle + half * kNodes[i]));
    }
    return sum * half;
}

// One part of an adaptive integral, whose sum in one piece is `whole`: halved until halving changes
// less than `tolerance`, or the part is too short to halve on, or the values are beyond numbers.
template <class Function>
double refineIntegral(const Function& f, double from, double to, double whole, double tolerance,
                      int depth) {
    const double middle = (from + to) / 2;
    const double left = gaussSum(f, from, middle);
    const double right = gaussSum(f, middle, to);
    const double change = std::abs(left + right - whole);
    if (depth == 0 || change <= tolerance || !std::isfinite(change)) return left + right;
    return refineIntegral(f, from, middle, left, tolerance, depth - 1) +
           refineIntegral(f, middle, to, right, tolerance, depth - 1);
}

// The integral of a smooth function, its error about 1e-13 of `size`. That is to be well above the
// rounding of the function's values times the width, which no halving gets under.
template <class Function>
double integrate(const Function& f, double from, double to, double size) {
    if (from == to) return 0;
    const double whole = gaussSum(f, from, to);
    return refineIntegral(f, from, to, whole, 1e-13 * size + 1e-15 * std::abs(whole), 20);
}

}  // namespace sg::model
