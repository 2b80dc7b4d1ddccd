#pragma once

namespace sg {

// The angle, on the XY plane of the world, of a direction that an angle of the user coordinate
// system names. In radians, [0, 2 pi).
double worldAngle(double userAngle);

}  // namespace sg
