#pragma once

#include "solids/fitting.h"

namespace sg {

// A piece from one section's tail to another one's head, which it moves along the second run by its
// length.
struct Transition {
    SolidPtr solid;     // null when the length is not above 0
    double length = 0;  // in drawing units
};

// The length is the first section's fixed length, or else what the change of size needs. The solid
// is answered even when it could not build the body.
Transition makeTransition(const DuctSection& first, const DuctSection& second,
                          const BuildOptions& options);

}  // namespace sg
