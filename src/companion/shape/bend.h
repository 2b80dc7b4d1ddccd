#pragma once

#include <optional>

#include "companion/shape/section.h"

namespace sg::companion {

// Where the runs of two sections meet: the first comes to the corner, the second leaves it.
struct Bend {
    AcGePoint3d corner;
    AcGeVector3d in, out;          // the directions of the runs
    AcGeVector3d normal;           // of their plane; the bend turns counter-clockwise about it
    AcGeVector3d inSide, outSide;  // across the runs in their plane, towards the inner side
    double angle = 0;              // by which the run turns, in radians

    // Nothing for runs that are parallel or pass each other, and for turns below 1 or above 160
    // degrees. `size` is that of the sections.
    static std::optional<Bend> of(const AcGePoint3d& head, const AcGeVector3d& in,
                                  const AcGePoint3d& tail, const AcGeVector3d& out, double size);
};

// The point where two lines come nearest, when they do so within `gap`.
std::optional<AcGePoint3d> crossingOf(const AcGePoint3d& a, const AcGeVector3d& along,
                                      const AcGePoint3d& b, const AcGeVector3d& other, double gap);

// A section as a plane through its run sees it: how far it reaches to the sides, and up.
struct PlaneSize {
    double across = 0;  // in the plane
    double up = 0;      // square to it
    double radius = 0;  // of the corners
};
// Nothing when the section is neither flat nor upright in the plane.
std::optional<PlaneSize> sizeInPlane(const Section& section, const AcGeVector3d& side);
// Half of what a section covers in a direction.
double halfReach(const Section& section, const AcGeVector3d& direction);
// The section that stands flat in the plane that has `side` and `normal` across a run.
Section planeSection(const AcGePoint3d& center, const AcGeVector3d& side,
                     const AcGeVector3d& normal, const PlaneSize& size, bool isRectangular);

// A mitred elbow: two straight pieces that are cut in the plane between them.
struct SquareElbow {
    AcGePoint3d head, tail;  // the connection points, at the ends of the collars
    Ring headRing, tailRing, mitre;

    Body body() const;
    // The same elbow with longer straight pieces. False, and nothing is changed, when a point is
    // not on its run, or ahead of where the connection point is.
    bool moveEnds(const AcGePoint3d& toHead, const AcGePoint3d& toTail);
};
// The elbow between the runs through the sections' centres. With sections that lie flat or upright
// in the plane of the bend the widths in it may differ; what stands square to the plane and the
// corners' radius may not. Others have to be the same section, carried round the bend. The straight
// pieces reach as far beyond the mitre as the collar is long.
std::optional<SquareElbow> squareElbow(const Section& head, const Section& tail, double collar);

// A swept elbow.
struct RadiusElbow {
    AcGePoint3d head, tail;  // the connection points, at the ends of the arc
    Body body;
};
// Of the head's section throughout. The radius of the centre line is `ratio` times its width, but
// no less than 0.501 times what it covers in the plane of the bend. With a wall the body is hollow.
std::optional<RadiusElbow> radiusElbow(const Section& head, const Section& tail, double ratio,
                                       double wall);

// The flat elbow of a cable tray: an arc on the inner side, a corner on the outer side. Its
// connection points are those of the radius elbow.
std::optional<RadiusElbow> trayElbow(const Section& head, const Section& tail, double ratio);

}  // namespace sg::companion
