#include "host/model/curves/math/nurbs.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sg::model {

namespace {

// A weighted point, in which rational curves are polynomials. Left as it is found by default: many
// are on the stack of every evaluation.
struct Homogeneous {
    double x, y, z, weight;

    Homogeneous operator+(const Homogeneous& o) const {
        return {x + o.x, y + o.y, z + o.z, weight + o.weight};
    }
    Homogeneous operator-(const Homogeneous& o) const {
        return {x - o.x, y - o.y, z - o.z, weight - o.weight};
    }
    Homogeneous operator*(double s) const { return {x * s, y * s, z * s, weight * s}; }
    AcGeVector3d scaled() const { return {x, y, z}; }  // the point times the weight
};

// Of which only the first degree + 1 are used.
using Local = std::array<Homogeneous, Nurbs::kMaxDegree + 1>;

Homogeneous homogeneousAt(const Nurbs& curve, size_t index) {
    const double weight = curve.isRational() ? curve.weights[index] : 1;
    const AcGePoint3d& point = curve.controls[index];
    return {point.x * weight, point.y * weight, point.z * weight, weight};
}

// De Boor's algorithm over the `degree` + 1 points that shape the span.
Homogeneous deBoor(const std::vector<double>& knots, size_t span, int degree, const Local& shaping,
                   double t) {
    Local points;
    std::copy_n(shaping.begin(), degree + 1, points.begin());
    for (int level = 1; level <= degree; ++level) {
        for (int j = degree; j >= level; --j) {
            const double low = knots[span - static_cast<size_t>(degree - j)];
            const double high = knots[span + static_cast<size_t>(1 + j - level)];
            const double share = (t - low) / (high - low);
            const auto at = static_cast<size_t>(j);
            points[at] = points[at - 1] * (1 - share) + points[at] * share;
        }
    }
    return points[static_cast<size_t>(degree)];
}

// The points of the derivative's curve, whose degree is one lower, over the same span.
Local differentiate(const std::vector<double>& knots, size_t span, int degree,
                    const Local& points) {
    Local result;
    for (int j = 0; j < degree; ++j) {
        const double high = knots[span + static_cast<size_t>(1 + j)];
        const double low = knots[span - static_cast<size_t>(degree - 1 - j)];
        const auto at = static_cast<size_t>(j);
        result[at] = (points[at + 1] - points[at]) * (degree / (high - low));
    }
    return result;
}

}  // namespace

bool Nurbs::isValid() const {
    if (degree < 1 || degree > kMaxDegree) return false;
    const auto order = static_cast<size_t>(degree) + 1;
    if (controls.size() < order || knots.size() != controls.size() + order) return false;
    if (!weights.empty() && weights.size() != controls.size()) return false;
    const auto bad = [](double value) { return !std::isfinite(value); };
    if (std::any_of(knots.begin(), knots.end(), bad)) return false;
    if (std::any_of(weights.begin(), weights.end(),
                    [](double weight) { return !(weight > 0) || !std::isfinite(weight); })) {
        return false;
    }
    return std::is_sorted(knots.begin(), knots.end()) && first() < last();
}

size_t Nurbs::spanAt(double t) const {
    const auto begin = knots.begin() + degree;
    const auto end = knots.begin() + static_cast<std::ptrdiff_t>(controls.size());
    auto above = std::upper_bound(begin, end, t);
    if (above == begin) ++above;
    auto span = static_cast<size_t>(above - knots.begin()) - 1;
    // At the end, and at a beginning before the domain, the last and first spans that are not empty
    // go on.
    while (span > static_cast<size_t>(degree) && knots[span] == knots[span + 1])
        --span;
    while (knots[span] == knots[span + 1])
        ++span;
    return span;
}

Nurbs::Values Nurbs::values(double t) const {
    const size_t span = spanAt(t);
    Local points;
    for (size_t j = 0; j <= static_cast<size_t>(degree); ++j) {
        points[j] = homogeneousAt(*this, span - static_cast<size_t>(degree) + j);
    }
    const Homogeneous p = deBoor(knots, span, degree, points, t);
    const Local slopes = differentiate(knots, span, degree, points);
    const Homogeneous d = deBoor(knots, span, degree - 1, slopes, t);
    Homogeneous dd{0, 0, 0, 0};
    if (degree >= 2) {
        dd = deBoor(knots, span, degree - 2, differentiate(knots, span, degree - 1, slopes), t);
    }
    const AcGeVector3d point = p.scaled() / p.weight;
    const AcGeVector3d first = (d.scaled() - point * d.weight) / p.weight;
    const AcGeVector3d second =
        (dd.scaled() - first * (2 * d.weight) - point * dd.weight) / p.weight;
    return {AcGePoint3d::kOrigin + point, first, second};
}

std::vector<double> Nurbs::breaks() const {
    std::vector<double> result;
    for (size_t i = static_cast<size_t>(degree); i <= controls.size(); ++i) {
        if (result.empty() || knots[i] > result.back()) result.push_back(knots[i]);
    }
    return result;
}

void Nurbs::insertKnot(double t) {
    const size_t span = spanAt(t);
    const auto p = static_cast<size_t>(degree);
    std::vector<Homogeneous> points;
    points.reserve(controls.size() + 1);
    for (size_t i = 0; i <= controls.size(); ++i) {
        if (i <= span - p) {
            points.push_back(homogeneousAt(*this, i));
        } else if (i > span) {
            points.push_back(homogeneousAt(*this, i - 1));
        } else {
            const double share = (t - knots[i]) / (knots[i + p] - knots[i]);
            points.push_back(homogeneousAt(*this, i - 1) * (1 - share) +
                             homogeneousAt(*this, i) * share);
        }
    }
    const bool rational = isRational();
    controls.clear();
    weights.clear();
    for (const Homogeneous& point : points) {
        controls.push_back(AcGePoint3d::kOrigin + point.scaled() / point.weight);
        if (rational) weights.push_back(point.weight);
    }
    knots.insert(knots.begin() + static_cast<std::ptrdiff_t>(span) + 1, t);
}

Nurbs Nurbs::part(double from, double to) const {
    Nurbs whole = *this;
    const auto fill = [&](double& t) {
        for (const double knot : knots) {
            if (std::abs(knot - t) <= 1e-12 * (last() - first())) t = knot;
        }
        auto there = std::count(whole.knots.begin(), whole.knots.end(), t);
        for (; there < degree; ++there)
            whole.insertKnot(t);
    };
    fill(from);
    fill(to);
    const auto p = static_cast<size_t>(degree);
    const auto& all = whole.knots;
    const auto afterFrom = std::upper_bound(all.begin(), all.end(), from);
    const auto atTo = std::lower_bound(all.begin(), all.end(), to);
    const auto firstControl = static_cast<size_t>(afterFrom - all.begin()) - 1 - p;
    const auto lastControl = static_cast<size_t>(atTo - all.begin()) - 1;

    Nurbs result;
    result.degree = degree;
    result.knots.assign(p + 1, from);
    result.knots.insert(result.knots.end(), afterFrom, atTo);
    result.knots.insert(result.knots.end(), p + 1, to);
    const auto cut = [&](const auto& from_, auto& to_) {
        to_.assign(from_.begin() + static_cast<std::ptrdiff_t>(firstControl),
                   from_.begin() + static_cast<std::ptrdiff_t>(lastControl) + 1);
    };
    cut(whole.controls, result.controls);
    if (isRational()) cut(whole.weights, result.weights);
    return result;
}

Nurbs Nurbs::reversed() const {
    Nurbs result = *this;
    const double sum = first() + last();
    std::reverse(result.knots.begin(), result.knots.end());
    for (double& knot : result.knots)
        knot = sum - knot;
    std::reverse(result.controls.begin(), result.controls.end());
    std::reverse(result.weights.begin(), result.weights.end());
    return result;
}

Nurbs Nurbs::transformed(const AcGeMatrix3d& transform) const {
    Nurbs result = *this;
    for (AcGePoint3d& point : result.controls)
        point = transform * point;
    return result;
}

}  // namespace sg::model
