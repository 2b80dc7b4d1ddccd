#pragma once

#include <array>

#include "companion/shape/body.h"

namespace sg::companion {

// Three unit vectors at right angles: along the run, across it, up from it.
struct Frame {
    AcGeVector3d x, y, z;

    // From the first of three vectors.
    static Frame of(const AcGeVector3d* vectors) { return {vectors[0], vectors[1], vectors[2]}; }
    bool isOrthonormal() const;
};

// A quarter of a section's bound: around one corner, an arc of the corner's radius.
struct CornerArc {
    AcGePoint3d start, middle, end;  // the arc touches the lines to the middle point
};

// A section's bound, counter-clockwise seen against the run: the corners at +y+z, -y+z, -y-z, +y-z.
// From the end of one to the start of the next it is straight. Both may be of no length.
struct Ring {
    std::array<CornerArc, 4> corners;
};

// A plane section of a run. A section that is not rectangular has corners as round as can be: a
// circle, or a flat oval when width and height differ.
struct Section {
    AcGePoint3d center;
    Frame frame;
    double width = 0;
    double height = 0;
    bool isRectangular = true;

    // Sizes above nothing, numbers that are numbers, and a frame that is one.
    bool isValid() const;
    bool isRound() const { return !isRectangular && width == height; }
    double cornerRadius() const {
        return isRectangular ? 0 : (width < height ? width : height) / 2;
    }
    AcGePoint3d at(double y, double z) const { return center + frame.y * y + frame.z * z; }
    double area() const;

    // The same section with its other way of seeing width and height: turned by a quarter.
    Section turned() const;
    Section movedTo(const AcGePoint3d& place) const;
    // Smaller by this much on each side.
    Section inset(double wall) const;

    Ring ring() const;
    Outline outline() const;
};

bool isFinite(const AcGePoint3d& point);
bool isFinite(const AcGeVector3d& vector);

// The smallest length that bodies have.
inline constexpr double kLeastLength = 1e-5;
// What points and directions may be off where they should meet, in parts of a size.
inline constexpr double kFit = 1e-5;

// The bound of a face over a ring, seen from where the ring runs counter-clockwise.
PlaneFace capOf(const Ring& ring);
// The same seen from the other side.
PlaneFace reversedCapOf(const Ring& ring);
// The faces between two rings, of which the second lies further along the run.
void addWalls(Patchwork& body, const Ring& from, const Ring& to);

}  // namespace sg::companion
