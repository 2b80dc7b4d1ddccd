#pragma once

#include <utility>
#include <vector>

namespace sg::model {

// Curves of the plane as plain data, for the geometry library.
struct PlaneCurve {
    enum class Kind { Line, Ellipse, Spline };

    Kind kind = Kind::Line;
    double first = 0;  // bounds of its parameter; finite
    double last = 0;
    // A line's point at 0 and its direction, of length 1; an ellipse's centre and major axis, whose
    // parameter runs from the major to the minor one.
    double origin[2] = {};
    double axis[2] = {};
    double minorRadius = 0;
    bool clockwise = false;
    // A B-spline: each knot as often as it counts, two coordinates a control point, weights or
    // none.
    int degree = 0;
    std::vector<double> knots, controls, weights;
};

// What the host has computed by the geometry library, which is opened when it is first needed.
class GeometryKernel {
  public:
    virtual ~GeometryKernel() = default;

    // The parameters on both at which two curves are no further apart than the tolerance: their
    // crossings and touches, and the ends of stretches that they share, each perhaps more than
    // once, to about the tolerance. Curves that the library fails on have none.
    virtual std::vector<std::pair<double, double>> intersect(const PlaneCurve& a,
                                                             const PlaneCurve& b,
                                                             double tolerance) const = 0;
};

// Null when the library is not there.
const GeometryKernel* geometryKernel();

// What the library exports under this name.
using GeometryKernelEntry = const GeometryKernel* (*)();
inline constexpr const char* kGeometryKernelEntry = "swiftgateGeometryKernel";
inline constexpr const char* kGeometryLibrary = "libswiftgate-geometry.so";

}  // namespace sg::model
