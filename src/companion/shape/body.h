#pragma once

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"

// Bodies as exact data: what a solid is filed as, and what the kernel makes boundaries of.
namespace sg::companion {

// A piece of an outline, from its own point to that of the piece behind it: straight, or along the
// arc of a circle through a point on the way.
struct Segment {
    AcGePoint3d from;
    bool isArc = false;
    AcGePoint3d via;
};
// Closed and plane.
using Outline = std::vector<Segment>;

// The area within the first outline and outside the others, moved along a vector.
struct Extrusion {
    std::vector<Outline> outlines;
    AcGeVector3d along;
};

// The area turned about an axis, counter-clockwise seen against it, by up to a full turn. The axis
// may bound the area but not cross it.
struct Revolution {
    std::vector<Outline> outlines;
    AcGePoint3d center;
    AcGeVector3d axis;  // of length 1
    double angle = 0;   // radians
};

// A line between the outer poles, or a quarter of an ellipse that touches the lines to the middle
// pole at them: the rational curve of degree 2 with weights 1, 1/sqrt(2), 1.
struct Curve {
    std::array<AcGePoint3d, 3> poles;
    bool isArc = false;

    static Curve line(const AcGePoint3d& from, const AcGePoint3d& to) {
        return {{from, from, to}, false};
    }
    static Curve arc(const AcGePoint3d& from, const AcGePoint3d& corner, const AcGePoint3d& to) {
        return {{from, corner, to}, true};
    }
    const AcGePoint3d& start() const { return poles[0]; }
    const AcGePoint3d& end() const { return poles[2]; }
    Curve reversed() const { return {{poles[2], poles[1], poles[0]}, isArc}; }
};

// A plane face, by its bound counter-clockwise seen from outside.
using PlaneFace = std::vector<Curve>;

// A face of straight lines from each place of one curve to the same place of the other. The two are
// of one kind, and one of them may be a point. Seen from outside the lower curve runs to the right
// when the upper one is above it.
struct Patch {
    Curve lower, upper;
};

// A closed boundary, face by face. Faces meet in whole curves.
struct Patchwork {
    std::vector<PlaneFace> faces;
    std::vector<Patch> patches;
};

using Body = std::variant<Extrusion, Revolution, Patchwork>;

// --- What is done to bodies, in order

struct AddBody {
    Body body;
};
// Takes the body away from all that stand.
struct CutBody {
    Body body;
};
// Keeps of the body that was added last what is on the side that the normal points to.
struct SliceLast {
    AcGePoint3d point;
    AcGeVector3d normal;
};
struct Step;
// Makes one body of all that stand and those of other steps.
struct Unite {
    std::vector<Step> steps;
};
struct Step {
    std::variant<AddBody, CutBody, SliceLast, Unite> action;
};
using Steps = std::vector<Step>;

// The steps that make the same bodies transformed. The matrix keeps circles circles.
void transform(Steps& steps, const AcGeMatrix3d& matrix);

}  // namespace sg::companion
