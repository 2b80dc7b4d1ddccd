#pragma once

#include <cstdint>

namespace sg::dwg {

// Line weights of entities, layers and the header in a file: their place in the row of all weights,
// or a number for by layer (29), by block (30) and the default (31). In a drawing they are
// hundredths of a millimetre, and -1, -2, -3.
int16_t lineWeightOf(uint8_t number);
uint8_t numberOfLineWeight(int16_t weight);

}  // namespace sg::dwg
