#pragma once

#include <vector>

#include "host/model/curves/math/shape.h"

namespace sg::model {

// Where two pieces meet: the parameter on each.
struct Meeting {
    double onFirst = 0;
    double onSecond = 0;
};

// How near is meeting. Pieces of about unit size meet within the default point tolerance; it grows
// with the smaller piece, and with the rounding of large coordinates.
struct MeetingTolerance {
    double point = 0;
    double merge = 0;  // meetings that are no further apart are the same

    MeetingTolerance(const Piece& first, const Piece& second);

    // A line or circle that misses another circle by no more than this, or cuts it no deeper,
    // touches it in one point. Tangent pieces that programs compute are apart by the errors of
    // their angles, which are larger than rounding.
    double touch(double radius) const { return point + 1e-8 * radius; }
};

// Appends where two pieces meet, between their bounds, each place once. Of pieces that run along
// each other, where one of them ends on the other. A single place more than a tolerance apart in
// space is no meeting.
void meetPieces(const Piece& first, const Piece& second, std::vector<Meeting>& meetings);

// --- The parts of it

// True when the parameter, moved by whole turns of a conic, lies between the bounds, or outside by
// no more than `slack` drawing units; then it is moved inside.
bool bringInside(const Piece& piece, double slack, double& t);

// A conic whose plane is seen from the side: it covers a line, there and back.
bool isFlat(const Piece& piece);

// For lines and conics; of two conics, both are circles. Bounds are kept; meetings at the bounds
// may be missing or come twice.
void meetLines(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
               std::vector<Meeting>& meetings);
void meetLineConic(const Piece& line, const Piece& conic, const MeetingTolerance& tolerance,
                   std::vector<Meeting>& meetings);
void meetCircles(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                 std::vector<Meeting>& meetings);
// For all others, by the geometry library. Without the library there are none.
void meetByKernel(const Piece& a, const Piece& b, const MeetingTolerance& tolerance,
                  std::vector<Meeting>& meetings);

// --- Whole curves

struct CurveMeeting {
    AcGePoint3d point;  // on the first curve
    double parameter = 0;
};

// The places where two curves meet, in order along the first, each once.
std::vector<CurveMeeting> meetShapes(const CurveShape& first, const CurveShape& second);
// The same as seen along a direction (a unit vector).
std::vector<CurveMeeting> meetShapesAlong(const CurveShape& first, const CurveShape& second,
                                          const AcGeVector3d& direction);

}  // namespace sg::model
