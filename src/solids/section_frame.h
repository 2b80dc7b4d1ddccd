#pragma once

#include <array>

#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"
#include "solids/duct_section.h"

namespace sg {

// The right-handed unit vectors of a section. A solid takes a frame as the address of the first.
struct SectionFrame {
    std::array<AcGeVector3d, 3> axes;

    AcGeVector3d& x() { return axes[0]; }  // along the run, from head to tail
    AcGeVector3d& y() { return axes[1]; }  // across it, the way of its width
    AcGeVector3d& z() { return axes[2]; }  // up, the way of its height
    const AcGeVector3d& x() const { return axes[0]; }
    const AcGeVector3d& y() const { return axes[1]; }
    const AcGeVector3d& z() const { return axes[2]; }

    const AcGeVector3d* data() const { return axes.data(); }
    AcGeVector3d* data() { return axes.data(); }
};

// A section's end: its reference point, converted by the LISP function convert_rp_dp if `convert`
// (a point that it does not convert stays as it is), and with a frame moved from there to the
// centre line, as the section's justification says.
AcGePoint3d sectionHeadPoint(const DuctSection& section, const SectionFrame* frame, bool convert);
AcGePoint3d sectionTailPoint(const DuctSection& section, const SectionFrame* frame, bool convert);

// True when head and tail stand over each other, as they are given.
bool sectionIsVertical(const DuctSection& section);

// A section's frame. That of a horizontal or sloped one has its y horizontal and to the left of the
// run. A vertical one takes its y from the next section's direction; with no next section, or one
// that is vertical too, its z is the world's x. A section without length has null vectors.
SectionFrame sectionFrame(const DuctSection& section, const DuctSection* next, bool convert);

}  // namespace sg
