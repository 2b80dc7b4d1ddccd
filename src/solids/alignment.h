#pragma once

#include "solids/section_frame.h"

namespace sg {

// The angle of a cosine or a sine that was computed from unit vectors, in radians. Such a value can
// miss the range from -1 to 1 by its last digits. A cosine so near 1 or -1 that no digits are left
// to tell a small angle from none is exactly that of 0 or pi.
double angleOfCosine(double cosine);
double angleOfSine(double sine);

// Brings the second section's frame into line with the first's, so that a fitting between the two
// is not twisted: the frame becomes the first one turned the short way from run to run, and the
// second's width and height are exchanged where that has turned them by a quarter. A frame that
// agrees already stays. With a round first section the first frame is turned about its run as well,
// so that its y stands square to the plane of both runs. Frames of parallel runs stay as they are.
void alignFrames(SectionFrame& first, SectionFrame& second, const Profile& firstProfile,
                 Profile& secondProfile);

// How steeply the reducers that fittings add taper, in degrees.
inline constexpr double kReducerAngle = 15.0;

// The length of a reducer whose sides taper at `degrees`; at least half the first profile's larger
// size where a round and a rectangular one meet.
double sizeChangeLength(const Profile& first, const Profile& second, double degrees);

}  // namespace sg
