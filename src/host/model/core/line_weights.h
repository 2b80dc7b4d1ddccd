#pragma once

#include <algorithm>
#include <array>
#include <span>

namespace sg::model {

// What objects may have as their line weight, in hundredths of a millimetre, rising; below 0 that
// of their layer (-1), their block (-2) or the default (-3).
inline constexpr std::array kObjectLineWeights = {-3, -2, -1,  0,   5,   9,   13,  15,  18,
                                                  20, 25, 30,  35,  40,  50,  53,  60,  70,
                                                  80, 90, 100, 106, 120, 140, 158, 200, 211};
// The widths alone, in the order of their numbers in drawing files.
inline constexpr auto kLineWeights = std::span(kObjectLineWeights).subspan<3>();

inline bool isLineWidth(int weight) {
    return std::binary_search(kLineWeights.begin(), kLineWeights.end(), weight);
}
inline bool isObjectLineWeight(int weight) {
    return isLineWidth(weight) || (weight >= -3 && weight <= -1);
}

}  // namespace sg::model
