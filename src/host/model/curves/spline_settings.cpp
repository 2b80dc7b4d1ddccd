#include "host/model/curves/spline_settings.h"

#include <algorithm>
#include <cstdlib>

#include "host/model/core/database_state.h"
#include "host/model/curves/math/nurbs.h"
#include "host/model/tables/header_variables.h"

namespace sg::model {

SplineSettings splineSettings(AcDbDatabase* database) {
    SplineSettings settings;
    if (database == nullptr) return settings;
    const HeaderVariables& header = DatabaseState::of(*database).header();
    settings.quadratic = header.get<int32_t>(L"SPLINETYPE") == 5;
    const int32_t segments = header.get<int32_t>(L"SPLINESEGS");
    if (segments != 0) settings.segments = static_cast<int16_t>(segments);
    return settings;
}

std::vector<AcGePoint3d> splinePoints(const std::vector<AcGePoint3d>& frame, int degree,
                                      bool closed, int segments) {
    const bool round = closed && frame.size() > 2;
    const auto vertices = static_cast<int>(frame.size());
    const int possible = round ? degree : std::min(degree, vertices - 1);
    const Nurbs curve = uniformSpline(frame, possible, round);
    const int steps = std::max(1, std::abs(segments)) * (round ? vertices : vertices - 1);
    std::vector<AcGePoint3d> points;
    for (int i = 0; i < steps + (round ? 0 : 1); ++i) {
        const double share = static_cast<double>(i) / steps;
        points.push_back(curve.at(curve.first() + (curve.last() - curve.first()) * share));
    }
    return points;
}

}  // namespace sg::model
