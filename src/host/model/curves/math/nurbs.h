#pragma once

#include <vector>

#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

namespace sg::model {

// A B-spline curve, rational when it has weights. There are controls.size() + degree + 1 knots in
// rising order; the curve runs over the parameters between knots[degree] and
// knots[controls.size()].
struct Nurbs {
    static constexpr int kMaxDegree = 25;

    int degree = 3;
    std::vector<double> knots;
    std::vector<AcGePoint3d> controls;
    std::vector<double> weights;  // empty: all are 1

    // Point and derivatives at one parameter.
    struct Values {
        AcGePoint3d point;
        AcGeVector3d first, second;
    };

    // True when the counts fit, the knots rise, no weight is 0 or less, and the domain is not
    // empty. Nothing else may be asked of one that is not valid.
    bool isValid() const;
    bool isRational() const { return !weights.empty(); }
    double first() const { return knots[static_cast<size_t>(degree)]; }
    double last() const { return knots[controls.size()]; }

    AcGePoint3d at(double t) const { return values(t).point; }
    // Outside the domain, of the polynomial at its end.
    Values values(double t) const;
    // The different knots of the domain, from its first to its last parameter.
    std::vector<double> breaks() const;

    // The same curve with one more knot. `t` lies inside the domain.
    void insertKnot(double t);
    // The stretch between two parameters of the domain, from < to, its end knots full.
    Nurbs part(double from, double to) const;
    // The same points over the same domain, run through the other way.
    Nurbs reversed() const;
    Nurbs transformed(const AcGeMatrix3d& transform) const;

  private:
    size_t spanAt(double t) const;
};

// The cubic curve with continuous curvature through the points, over the lengths of their chords;
// its ends have these directions, or no curvature where the vector is zero. Two points or more, of
// which no two neighbours are the same.
Nurbs interpolate(const std::vector<AcGePoint3d>& points, const AcGeVector3d& startTangent,
                  const AcGeVector3d& endTangent);

// The curve of this degree over a control polygon with knots at equal distances, through the first
// and the last point, or when closed without a beginning.
Nurbs uniformSpline(const std::vector<AcGePoint3d>& polygon, int degree, bool closed);

}  // namespace sg::model
