#pragma once

#include <vector>

#include "host/model/curves/math/piece.h"

namespace sg::model {

// Points of a bounded piece from its start to its end, so close that the chords between them stand
// off it by no more than `deviation`, which is above 0.
std::vector<AcGePoint3d> chordsOf(const Piece& piece, double deviation);

}  // namespace sg::model
