#include "host/model/curves/math/piece.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "host/model/curves/math/angles.h"
#include "host/model/curves/math/integral.h"
#include "host/model/curves/math/roots.h"

namespace sg::model {

Piece Piece::line(const AcGePoint3d& from, const AcGePoint3d& to) {
    return line(from, to - from, 0, 1);
}

Piece Piece::line(const AcGePoint3d& origin, const AcGeVector3d& direction, double first,
                  double last) {
    Piece piece;
    piece.origin = origin;
    piece.u = direction;
    piece.first = first;
    piece.last = last;
    return piece;
}

Piece Piece::conic(const AcGePoint3d& center, const AcGeVector3d& u, const AcGeVector3d& v,
                   double first, double last) {
    Piece piece = line(center, u, first, last);
    piece.kind = Kind::Conic;
    piece.v = v;
    return piece;
}

namespace {

bool isSimple(const AcGeVector3d& before, const AcGeVector3d& after) {
    const double product = before.dotProduct(after);
    const double faster = std::max(before.lengthSqrd(), after.lengthSqrd());
    const double slower = std::min(before.lengthSqrd(), after.lengthSqrd());
    if (faster == 0) return true;  // stands still
    return slower * 4 >= faster && product > 0 && 2 * product * product >= faster * slower;
}

// Appends parameters behind `from` up to `to`, between which the spline is simple.
void appendSimple(const Nurbs& curve, double from, const AcGeVector3d& atFrom, double to,
                  const AcGeVector3d& atTo, int halvings, std::vector<double>& samples) {
    const double middle = (from + to) / 2;
    const AcGeVector3d between = curve.values(middle).first;
    if (halvings == 0 ||
        (isSimple(atFrom, between) && isSimple(between, atTo) && isSimple(atFrom, atTo))) {
        samples.push_back(to);
        return;
    }
    appendSimple(curve, from, atFrom, middle, between, halvings - 1, samples);
    appendSimple(curve, middle, between, to, atTo, halvings - 1, samples);
}

std::vector<double> samplesOf(const Nurbs& curve) {
    constexpr int kMostHalvings = 12;
    const std::vector<double> breaks = curve.breaks();
    std::vector<double> samples{breaks.front()};
    for (size_t i = 1; i < breaks.size(); ++i) {
        // The derivative at a knot may be that of the next span.
        const double inside = 1e-9 * (breaks[i] - breaks[i - 1]);
        const AcGeVector3d first = curve.values(breaks[i - 1] + inside).first;
        const AcGeVector3d last = curve.values(breaks[i] - inside).first;
        const int halvings = curve.degree == 1 ? 0 : kMostHalvings;
        appendSimple(curve, breaks[i - 1], first, breaks[i], last, halvings, samples);
    }
    return samples;
}

}  // namespace

Piece Piece::nurbs(Nurbs curve) {
    Piece piece;
    piece.kind = Kind::Spline;
    piece.first = curve.first();
    piece.last = curve.last();
    piece.splineSamples = std::make_shared<const std::vector<double>>(samplesOf(curve));
    piece.spline = std::make_shared<const Nurbs>(std::move(curve));
    return piece;
}

bool Piece::isBounded() const {
    return std::isfinite(first) && std::isfinite(last);
}

bool Piece::isCircular() const {
    if (kind != Kind::Conic) return false;
    const double size = std::max(u.lengthSqrd(), v.lengthSqrd());
    return std::abs(u.lengthSqrd() - v.lengthSqrd()) <= 1e-12 * size &&
           std::abs(u.dotProduct(v)) <= 1e-12 * size;
}

Nurbs::Values Piece::values(double t) const {
    if (kind == Kind::Spline) return spline->values(t);
    if (kind == Kind::Line) return {origin + u * t, u, {}};
    const AcGeVector3d spoke = u * std::cos(t) + v * std::sin(t);
    return {origin + spoke, v * std::cos(t) - u * std::sin(t), -spoke};
}

AcGePoint3d Piece::at(double t) const {
    if (kind == Kind::Spline) return spline->at(t);
    if (kind == Kind::Line) return t == 0 ? origin : origin + u * t;
    return origin + (u * std::cos(t) + v * std::sin(t));
}

namespace {

// About how long a conic or a spline is, at most.
double roughLength(const Piece& piece) {
    if (piece.kind == Piece::Kind::Conic) return piece.u.length() + piece.v.length();
    double sum = 0;
    const std::vector<AcGePoint3d>& controls = piece.spline->controls;
    for (size_t i = 1; i < controls.size(); ++i)
        sum += controls[i].distanceTo(controls[i - 1]);
    return sum;
}

}  // namespace

double Piece::length(double from, double to) const {
    if (kind == Kind::Line) return u.length() * (to - from);
    if (isCircular()) return u.length() * (to - from);
    if (to < from) return -length(to, from);
    const auto speed = [this](double t) { return values(t).first.length(); };
    const double size = roughLength(*this) / 100;
    double sum = 0;
    double at = from;
    for (const double next : samples()) {
        if (next <= at) continue;
        if (next >= to) break;
        sum += integrate(speed, at, next, size);
        at = next;
    }
    return sum + integrate(speed, at, to, size);
}

double Piece::paramAtLength(double from, double distance) const {
    const double even = u.length();
    if (kind == Kind::Line || isCircular()) return even == 0 ? from : from + distance / even;
    // The stretch between two samples that the distance ends in, then Newton's method in it.
    const std::vector<double> stops = samples();
    double low = from;
    double rest = distance;
    if (distance >= 0) {
        for (const double stop : stops) {
            if (stop <= low) continue;
            const double whole = length(low, stop);
            if (whole >= rest) return paramBetween(*this, low, stop, rest);
            rest -= whole;
            low = stop;
        }
        return low;
    }
    for (size_t i = stops.size(); i-- > 0;) {
        if (stops[i] >= low) continue;
        const double whole = length(stops[i], low);
        if (whole >= -rest) return paramBetween(*this, stops[i], low, whole + rest);
        rest += whole;
        low = stops[i];
    }
    return low;
}

std::vector<double> Piece::samples() const {
    if (kind == Kind::Spline) return *splineSamples;
    if (kind == Kind::Line) return {first, last};
    const double eighths = std::ceil((last - first) / (std::numbers::pi / 4));
    const int parts = std::max(1, static_cast<int>(eighths));
    std::vector<double> result;
    for (int i = 0; i < parts; ++i)
        result.push_back(first + (last - first) * i / parts);
    result.push_back(last);
    return result;
}

// Each part between samples is looked at from its inside, because a spline's derivative may jump at
// a knot; where it jumps across zero, the knot is a root.
template <class Function>
void Piece::appendRoots(const Function& f, std::vector<double>& roots) const {
    const int parts = kind == Kind::Spline ? 2 : 4;  // finds pairs of roots between samples
    const std::vector<double> stops = samples();
    double before = 0;
    for (size_t i = 1; i < stops.size(); ++i) {
        const double width = (stops[i] - stops[i - 1]) / parts;
        for (int part = 0; part < parts; ++part) {
            const double from = stops[i - 1] + width * part;
            const double low = from + 1e-9 * width;
            const double high = from + width * (1 - 1e-9);
            const double atLow = f(low);
            const double atHigh = f(high);
            if (before * atLow <= 0) roots.push_back(from);
            if (atLow * atHigh < 0) roots.push_back(bisect(f, low, high, atLow));
            before = atHigh;
        }
    }
    if (before == 0 || f(stops.back()) == 0) roots.push_back(stops.back());
}

namespace {

// Where a circle's angle to the point lies in [first, first + one turn).
double angleTowards(const Piece& circle, const AcGePoint3d& point) {
    const AcGeVector3d to = point - circle.origin;
    const double x = to.dotProduct(circle.u);
    const double y = to.dotProduct(circle.v);
    const double size = circle.u.lengthSqrd();
    if (std::hypot(x, y) <= 1e-14 * std::max(size, to.length() * std::sqrt(size))) {
        return circle.first;
    }
    return angleFrom(std::atan2(y, x), circle.first);
}

}  // namespace

double Piece::closest(const AcGePoint3d& point) const {
    if (kind == Kind::Line) {
        const double size = u.lengthSqrd();
        const double t = size == 0 ? 0 : (point - origin).dotProduct(u) / size;
        return std::clamp(t, first, last);
    }
    double best = first;
    double shortest = std::numeric_limits<double>::infinity();
    const auto consider = [&](double t) {
        const double distance = (at(t) - point).lengthSqrd();
        if (distance < shortest) {
            shortest = distance;
            best = t;
        }
    };
    if (isCircular()) {
        const double angle = angleTowards(*this, point);
        if (angle <= last) return angle;
        consider(first);
        consider(last);
        return best;
    }
    std::vector<double> feet{first};
    appendFeet(point, feet);
    feet.push_back(last);
    if (kind == Kind::Spline) {
        // The corners of a spline that is not smooth at its knots.
        const std::vector<double> corners = spline->breaks();
        feet.insert(feet.end(), corners.begin(), corners.end());
    }
    std::sort(feet.begin(), feet.end());
    for (const double t : feet)
        consider(t);
    return best;
}

void Piece::appendFeet(const AcGePoint3d& point, std::vector<double>& parameters) const {
    if (kind == Kind::Line) {
        const double size = u.lengthSqrd();
        if (size == 0) return;
        const double t = (point - origin).dotProduct(u) / size;
        if (t >= first && t <= last) parameters.push_back(t);
        return;
    }
    if (isCircular()) {
        const double near = angleTowards(*this, point);
        const double far = angleFrom(near + std::numbers::pi, first);
        if (near <= last) parameters.push_back(near);
        if (far <= last) parameters.push_back(far);
        return;
    }
    appendRoots(
        [&](double t) {
            const Nurbs::Values here = values(t);
            return (here.point - point).dotProduct(here.first);
        },
        parameters);
}

void Piece::appendTangents(const AcGePoint3d& point, const AcGeVector3d& normal,
                           std::vector<double>& parameters) const {
    if (kind == Kind::Spline) {
        appendRoots(
            [&](double t) {
                const Nurbs::Values here = values(t);
                return (here.point - point).crossProduct(here.first).dotProduct(normal);
            },
            parameters);
    }
    if (kind != Kind::Conic) return;
    // In coordinates along u and v the conic is the unit circle, and touching stays touching.
    const AcGeVector3d up = axis();
    const double size = up.lengthSqrd();
    if (size == 0) return;
    const AcGeVector3d to = point - origin;
    const double x = to.crossProduct(v).dotProduct(up) / size;
    const double y = u.crossProduct(to).dotProduct(up) / size;
    const double distance = std::hypot(x, y);
    if (distance < 1) return;
    const double towards = std::atan2(y, x);
    const double aside = std::acos(1 / distance);
    for (const double angle : {towards - aside, towards + aside}) {
        const double t = angleFrom(angle, first);
        if (t <= last) parameters.push_back(t);
    }
}

void Piece::addExtents(AcDbExtents& extents) const {
    extents.addPoint(start());
    extents.addPoint(end());
    if (kind == Kind::Line) return;
    for (unsigned int i = 0; i < 3; ++i) {
        if (kind == Kind::Conic) {
            const double top = angleFrom(std::atan2(v[i], u[i]), first);
            const double bottom = angleFrom(top + std::numbers::pi, first);
            if (top <= last) extents.addPoint(at(top));
            if (bottom <= last) extents.addPoint(at(bottom));
        } else {
            std::vector<double> turns = spline->breaks();
            appendRoots([&](double t) { return values(t).first[i]; }, turns);
            for (const double t : turns)
                extents.addPoint(at(t));
        }
    }
}

AcGeVector3d Piece::sweptArea(const AcGePoint3d& base, double from, double to) const {
    if (kind == Kind::Line) return (at(from) - base).crossProduct(at(to) - base) / 2;
    if (kind == Kind::Conic) {
        const AcGeVector3d chord = at(to) - at(from);
        return ((origin - base).crossProduct(chord) + axis() * (to - from)) / 2;
    }
    const auto sweep = [&](double t) {
        const Nurbs::Values here = values(t);
        return (here.point - base).crossProduct(here.first);
    };
    AcGeVector3d sum;
    double at = from;
    for (const double stop : samples()) {
        const double next = std::clamp(stop, from, to);
        if (next <= at) continue;
        const auto size = [&](double t) {
            const Nurbs::Values here = values(t);
            return here.point.distanceTo(base) * here.first.length();
        };
        const double whole = gaussSum(size, at, next);
        for (unsigned int i = 0; i < 3; ++i) {
            sum[i] += integrate([&](double t) { return sweep(t)[i]; }, at, next, whole);
        }
        at = next;
    }
    return sum / 2;
}

Piece Piece::transformed(const AcGeMatrix3d& transform) const {
    if (kind == Kind::Spline) return nurbs(spline->transformed(transform));
    Piece result = *this;
    result.origin = transform * origin;
    result.u = transform * u;
    result.v = transform * v;
    return result;
}

Piece Piece::projected(const AcGeVector3d& normal) const {
    AcGeMatrix3d flatten;
    for (unsigned int row = 0; row < 3; ++row) {
        for (unsigned int column = 0; column < 3; ++column) {
            flatten(row, column) -= normal[row] * normal[column];
        }
    }
    return transformed(flatten);
}

Piece Piece::extended(bool backward, bool forward) const {
    Piece result = *this;
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    if (kind == Kind::Line && u.lengthSqrd() > 0) {
        if (backward) result.first = -kEndless;
        if (forward) result.last = kEndless;
    } else if (kind == Kind::Conic && (backward || forward)) {
        result.last = result.first + 2 * std::numbers::pi;
    }
    return result;
}

bool isWholeTurn(const Piece& piece) {
    return piece.kind == Piece::Kind::Conic &&
           piece.last - piece.first >= 2 * std::numbers::pi * (1 - 1e-14);
}

}  // namespace sg::model
