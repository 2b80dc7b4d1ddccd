#pragma once

#include <cstdint>
#include <vector>

#include "platform/ge/point3d.h"

class AcDbDatabase;

namespace sg::model {

// How a drawing wants polylines spline-fitted: its SPLINETYPE and SPLINESEGS.
struct SplineSettings {
    bool quadratic = false;
    int16_t segments = 8;  // between two vertices of the frame; below 0 as arcs; never 0
};
// Those of a new drawing for a null database.
SplineSettings splineSettings(AcDbDatabase* database);

// Points of the B-spline over the frame, evenly in its parameter, as many segments between each two
// vertices; the degree is lowered where there are too few vertices. Open, the ends are points of
// it; closed, its first point is not repeated.
std::vector<AcGePoint3d> splinePoints(const std::vector<AcGePoint3d>& frame, int degree,
                                      bool closed, int segments);

}  // namespace sg::model
