#include <algorithm>
#include <cmath>
#include <utility>

#include "host/model/curves/math/nurbs.h"

namespace sg::model {

namespace {

// The four cubic basis functions that do not vanish at a parameter, and their first two
// derivatives.
struct Basis {
    size_t firstControl = 0;
    double value[3][4] = {};
};

// Found through curves whose control points are unit steps, one for each function.
Basis cubicBasis(const std::vector<double>& knots, size_t controls, double t) {
    size_t span = 3;
    while (span + 1 < controls && t >= knots[span + 1])
        ++span;
    Basis basis;
    basis.firstControl = span - 3;
    Nurbs probe;
    probe.knots.assign(knots.begin() + static_cast<std::ptrdiff_t>(span) - 3,
                       knots.begin() + static_cast<std::ptrdiff_t>(span) + 5);
    for (int k = 0; k < 4; ++k) {
        probe.controls.assign(4, AcGePoint3d());
        probe.controls[static_cast<size_t>(k)].x = 1;
        const Nurbs::Values values = probe.values(t);
        basis.value[0][k] = values.point.x;
        basis.value[1][k] = values.first.x;
        basis.value[2][k] = values.second.x;
    }
    return basis;
}

// A linear system whose rows have few neighbours of the diagonal, solved in place by elimination
// with row exchange within the band.
class BandSystem {
  public:
    static constexpr int kReach = 4;  // columns on each side of the diagonal

    explicit BandSystem(size_t size) : rows_(size), right_(size) {}

    void setRow(size_t row, const Basis& basis, int derivative, const AcGeVector3d& right) {
        rows_[row].assign(2 * kReach + 1, 0.0);
        for (int k = 0; k < 4; ++k)
            at(row, basis.firstControl + static_cast<size_t>(k)) = basis.value[derivative][k];
        right_[row] = right;
    }

    std::vector<AcGePoint3d> solve() {
        const size_t n = rows_.size();
        for (size_t column = 0; column < n; ++column)
            eliminate(column);
        std::vector<AcGePoint3d> result(n);
        for (size_t row = n; row-- > 0;) {
            AcGeVector3d sum = right_[row];
            for (size_t c = row + 1; c < n && c <= row + kReach; ++c) {
                sum -= result[c].asVector() * at(row, c);
            }
            result[row] = AcGePoint3d::kOrigin + sum / at(row, row);
        }
        return result;
    }

  private:
    double& at(size_t row, size_t column) { return rows_[row][column + kReach - row]; }

    // Rows reach at most two columns to the left, so that two rows below hold the column.
    void eliminate(size_t column) {
        const size_t n = rows_.size();
        size_t pivot = column;
        for (size_t row = column + 1; row < n && row <= column + 2; ++row) {
            if (std::abs(at(row, column)) > std::abs(at(pivot, column))) pivot = row;
        }
        if (pivot != column) exchange(column, pivot);
        for (size_t row = column + 1; row < n && row <= column + 2; ++row) {
            const double factor = at(row, column) / at(column, column);
            if (factor == 0) continue;
            for (size_t c = column; c < n && c <= column + 3; ++c) {
                if (c <= row + kReach) at(row, c) -= factor * at(column, c);
            }
            right_[row] -= right_[column] * factor;
        }
    }

    void exchange(size_t a, size_t b) {
        for (size_t c = a; c < rows_.size() && c <= a + kReach; ++c) {
            std::swap(at(a, c), at(b, c));
        }
        std::swap(right_[a], right_[b]);
    }

    std::vector<std::vector<double>> rows_;
    std::vector<AcGeVector3d> right_;
};

std::vector<double> chordLengths(const std::vector<AcGePoint3d>& points) {
    std::vector<double> at{0};
    for (size_t i = 1; i < points.size(); ++i) {
        at.push_back(at.back() + points[i].distanceTo(points[i - 1]));
    }
    return at;
}

}  // namespace

Nurbs interpolate(const std::vector<AcGePoint3d>& points, const AcGeVector3d& startTangent,
                  const AcGeVector3d& endTangent) {
    const std::vector<double> at = chordLengths(points);
    Nurbs curve;
    curve.knots.assign(4, at.front());
    curve.knots.insert(curve.knots.end(), at.begin() + 1, at.end() - 1);
    curve.knots.insert(curve.knots.end(), 4, at.back());

    const size_t n = points.size() + 2;
    BandSystem system(n);
    const auto endRow = [&](size_t row, double t, const AcGeVector3d& tangent) {
        const bool free = tangent.isZeroLength();
        system.setRow(row, cubicBasis(curve.knots, n, t), free ? 2 : 1,
                      free ? AcGeVector3d() : tangent.normal());
    };
    system.setRow(0, cubicBasis(curve.knots, n, at.front()), 0, points.front().asVector());
    endRow(1, at.front(), startTangent);
    for (size_t i = 1; i + 1 < points.size(); ++i) {
        system.setRow(i + 1, cubicBasis(curve.knots, n, at[i]), 0, points[i].asVector());
    }
    endRow(n - 2, at.back(), endTangent);
    system.setRow(n - 1, cubicBasis(curve.knots, n, at.back()), 0, points.back().asVector());
    curve.controls = system.solve();
    return curve;
}

Nurbs uniformSpline(const std::vector<AcGePoint3d>& polygon, int degree, bool closed) {
    Nurbs curve;
    curve.degree = degree;
    curve.controls = polygon;
    const auto p = static_cast<size_t>(degree);
    if (closed) {
        for (size_t i = 0; i < p; ++i)
            curve.controls.push_back(polygon[i % polygon.size()]);
    }
    const size_t spans = curve.controls.size() - p;
    const size_t knots = curve.controls.size() + p + 1;
    for (size_t i = 0; i < knots; ++i) {
        const double even = static_cast<double>(i) - static_cast<double>(p);
        curve.knots.push_back(closed ? even : std::clamp(even, 0.0, static_cast<double>(spans)));
    }
    return curve;
}

}  // namespace sg::model
