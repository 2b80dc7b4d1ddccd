#pragma once

#include <optional>

#include "companion/shape/section.h"

namespace sg::companion {

// The body between two sections: straight from each place of the one to that of the other. Its ends
// are the sections themselves.
//
// The direction in which the frames look along the run plays no part. Corners go to the corners
// that they are nearest to when the frames are rolled against each other, so that a quarter turn
// twists nothing; a round section has no corners and follows the other.
//
// Nothing for sections of no size, or where one of them does not lie wholly before the other.
std::optional<Body> transitionBody(const Section& head, const Section& tail);

}  // namespace sg::companion
