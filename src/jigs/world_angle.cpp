#include "jigs/world_angle.h"

#include "drawing/current_drawing.h"

namespace sg {

double worldAngle(double userAngle) {
    const AcGePoint3d origin;
    const AcGePoint3d point = polar(origin, userAngle, 1.0);
    return xyAngle(convertToWCS(origin), convertToWCS(point));
}

}  // namespace sg
