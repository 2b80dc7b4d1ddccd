#pragma once

#include <array>
#include <optional>

#include "companion/shape/bend.h"

namespace sg::companion {

// A run that splits in two: three straight pieces whose side walls meet in mitres.
struct Wye {
    std::array<AcGePoint3d, 3> ends;  // the connection points: of the head, and of the two tails
    std::array<Ring, 3> rings;        // the sections there
    // Where walls meet: between the tails, between the head and the first tail, between the head
    // and the second; each from above downwards at the one knee, then at the other if the wall has
    // two.
    std::array<std::array<AcGePoint3d, 8>, 3> knees;
    Patchwork boundary;
};

// Sections with their runs' directions as they flow: into the fitting, and out of it. All run in
// one plane, through one point, in which they lie flat or upright; the widths in the plane may
// differ, what stands square to it and the corners' radius may not. The tails keep 10 degrees
// apart, and turn by at most 150 degrees.
std::optional<Wye> wye(const Section& head, const Section& tail1, const Section& tail2,
                       double collar);

}  // namespace sg::companion
