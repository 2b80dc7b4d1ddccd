#include "host/dwg/line_weights.h"

#include <algorithm>
#include <iterator>

namespace sg::dwg {
namespace {

constexpr int16_t kWeights[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
constexpr uint8_t kByLayer = 29;  // by block and the default follow

}  // namespace

int16_t lineWeightOf(uint8_t number) {
    if (number < std::size(kWeights)) return kWeights[number];
    return static_cast<int16_t>(number > kByLayer && number < kByLayer + 3 ? kByLayer - 1 - number
                                                                           : -1);
}

uint8_t numberOfLineWeight(int16_t weight) {
    if (weight < 0) {
        return static_cast<uint8_t>(kByLayer + (weight >= -3 ? -1 - weight : 0));
    }
    const auto* const found = std::lower_bound(std::begin(kWeights), std::end(kWeights), weight);
    return static_cast<uint8_t>(
        std::min<ptrdiff_t>(found - std::begin(kWeights), std::ssize(kWeights) - 1));
}

}  // namespace sg::dwg
