#include "host/model/curves/math/shape.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sg::model {

Span::Span(Piece p, double start, double end)
    : piece(std::move(p)),
      from(start),
      to(end),
      anchor_(start),
      anchorInPiece_(piece.first),
      rate_(end > start ? (piece.last - piece.first) / (end - start) : 0) {}

double Span::toPiece(double parameter) const {
    if (parameter == from) return piece.first;
    if (parameter == to) return piece.last;
    return anchorInPiece_ + (parameter - anchor_) * rate_;
}

double Span::toCurve(double t) const {
    if (t == piece.first || rate_ == 0) return from;
    if (t == piece.last) return to;
    return anchor_ + (t - anchorInPiece_) / rate_;
}

void Span::extend(bool backward, bool forward) {
    if (rate_ == 0) return;
    const Piece whole = piece.extended(backward, forward);
    from = toCurve(whole.first);
    to = toCurve(whole.last);
    piece = whole;
}

bool CurveShape::isBounded() const {
    return std::all_of(spans.begin(), spans.end(),
                       [](const Span& span) { return span.piece.isBounded(); });
}

namespace {

// A box that holds the piece, found without looking for its extremes.
void addRoughly(const Piece& piece, AcDbExtents& box) {
    if (piece.kind == Piece::Kind::Spline) {
        for (const AcGePoint3d& point : piece.spline->controls)
            box.addPoint(point);
        return;
    }
    if (piece.kind == Piece::Kind::Line) {
        for (const double t : {piece.first, piece.last}) {
            box.addPoint(std::isfinite(t) ? piece.at(t) : piece.origin + piece.u);
        }
        return;
    }
    const AcGeVector3d reach(std::abs(piece.u.x) + std::abs(piece.v.x),
                             std::abs(piece.u.y) + std::abs(piece.v.y),
                             std::abs(piece.u.z) + std::abs(piece.v.z));
    box.addPoint(piece.origin - reach);
    box.addPoint(piece.origin + reach);
}

}  // namespace

double CurveShape::tolerance() const {
    AcDbExtents box;
    for (const Span& span : spans)
        addRoughly(span.piece, box);
    const double size = box.minPoint().distanceTo(box.maxPoint());
    const double coordinates =
        std::max(box.minPoint().asVector().length(), box.maxPoint().asVector().length());
    return std::max({1e-6 * size, 1e-15 * coordinates, AcGeContext::gTol.equalPoint()});
}

bool CurveShape::locate(double& parameter, size_t& span) const {
    const double start = startParam();
    const double end = endParam();
    const double slack = 1e-9 * (std::isfinite(end - start) ? std::max(1e-3, end - start) : 1.0);
    if (!(parameter >= start - slack && parameter <= end + slack)) return false;
    parameter = std::clamp(parameter, start, end);
    const auto after = std::upper_bound(spans.begin(), spans.end(), parameter,
                                        [](double p, const Span& s) { return p < s.from; });
    span = after == spans.begin() ? 0 : static_cast<size_t>(after - spans.begin()) - 1;
    return true;
}

Nurbs::Values CurveShape::values(const Span& span, double parameter) const {
    Nurbs::Values values = span.piece.values(span.toPiece(parameter));
    const double rate = span.rate();
    values.first *= rate;
    values.second *= rate * rate;
    return values;
}

double CurveShape::length() const {
    double sum = 0;
    for (const Span& span : spans)
        sum += span.piece.length(span.piece.first, span.piece.last);
    return sum;
}

double CurveShape::lengthTo(double parameter, size_t span) const {
    double sum = 0;
    for (size_t i = 0; i < span; ++i) {
        sum += spans[i].piece.length(spans[i].piece.first, spans[i].piece.last);
    }
    return sum + spans[span].piece.length(spans[span].piece.first, spans[span].toPiece(parameter));
}

bool CurveShape::paramAtLength(double distance, double& parameter) const {
    if (!std::isfinite(distance)) return false;
    const double slack = tolerance() * 1e-3;
    if (distance < -slack) return false;
    double rest = std::max(distance, 0.0);
    for (const Span& span : spans) {
        const double whole = span.piece.length(span.piece.first, span.piece.last);
        if (rest < whole) {
            const double t = span.piece.paramAtLength(span.piece.first, rest);
            parameter = span.toCurve(std::clamp(t, span.piece.first, span.piece.last));
            return true;
        }
        rest -= whole;
    }
    if (rest > slack) return false;
    parameter = endParam();
    return true;
}

CurveShape::Nearest CurveShape::closest(const AcGePoint3d& point) const {
    Nearest best;
    double shortest = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < spans.size(); ++i) {
        const double t = spans[i].piece.closest(point);
        const AcGePoint3d at = spans[i].piece.at(t);
        const double distance = (at - point).lengthSqrd();
        if (distance >= shortest) continue;
        shortest = distance;
        best = {i, t, spans[i].toCurve(t), at};
    }
    return best;
}

CurveShape::Nearest CurveShape::closestAlong(const AcGePoint3d& point,
                                             const AcGeVector3d& direction) const {
    Nearest best;
    double shortest = std::numeric_limits<double>::infinity();
    double shortestInSpace = shortest;
    const AcGePoint3d seen = point - direction * point.asVector().dotProduct(direction);
    for (size_t i = 0; i < spans.size(); ++i) {
        const Piece& piece = spans[i].piece;
        const Piece flat = piece.projected(direction);
        // A line along the direction is seen as a point: there, space decides.
        const bool seenAsPoint =
            piece.kind == Piece::Kind::Line && flat.u.length() <= 1e-12 * piece.u.length();
        const double t = seenAsPoint ? piece.closest(point) : flat.closest(seen);
        const double distance = flat.at(t).distanceTo(seen);
        const double inSpace = piece.at(t).distanceTo(point);
        const double same = 1e-12 * (1 + distance);
        if (distance > shortest + same) continue;
        if (distance >= shortest - same && inSpace >= shortestInSpace) continue;
        shortest = distance;
        shortestInSpace = inSpace;
        best = {i, t, spans[i].toCurve(t), piece.at(t)};
    }
    return best;
}

bool CurveShape::paramAtPoint(const AcGePoint3d& point, double& parameter) const {
    const Nearest nearest = closest(point);
    // A curve without end is as large as the part that is asked about.
    const double part = isBounded() ? 0 : 1e-6 * point.distanceTo(spans.front().piece.origin);
    const double allowed = std::max(tolerance(), part);
    const double off = nearest.point.distanceTo(point);
    if (!(off <= allowed)) return false;
    parameter = nearest.parameter;
    // A point is where a piece starts or ends when it is so but for rounding; a closed curve's end
    // is its start.
    const double same = std::max(1e-4 * allowed, 1e-14 * point.asVector().length()) + off;
    const Span& span = spans[nearest.span];
    if (std::isfinite(span.from) && span.piece.start().distanceTo(point) <= same) {
        parameter = span.from;
    } else if (std::isfinite(span.to) && span.piece.end().distanceTo(point) <= same) {
        parameter = span.to;
    }
    if (closed && parameter == endParam()) parameter = startParam();
    return true;
}

CurveShape CurveShape::extended() const {
    CurveShape result = *this;
    if (closed || spans.empty()) return result;
    if (spans.size() == 1) {
        result.spans[0].extend(true, true);
    } else {
        result.spans.front().extend(true, false);
        result.spans.back().extend(false, true);
    }
    return result;
}

AcDbExtents CurveShape::extents() const {
    AcDbExtents box;
    for (const Span& span : spans)
        span.piece.addExtents(box);
    if (thickness != 0 && !box.isEmpty()) {
        const AcGeVector3d rise = normal * thickness;
        const AcDbExtents raised(box.minPoint() + rise, box.maxPoint() + rise);
        box.addExt(raised);
    }
    return box;
}

AcGeVector3d CurveShape::areaVector() const {
    const AcGePoint3d base = spans.front().piece.start();
    AcGeVector3d sum;
    for (const Span& span : spans) {
        sum += span.piece.sweptArea(base, span.piece.first, span.piece.last);
    }
    return sum;
}

namespace {

// Points that span what the piece spans.
void appendFrame(const Piece& piece, std::vector<AcGePoint3d>& points) {
    if (piece.kind == Piece::Kind::Spline) {
        const auto& controls = piece.spline->controls;
        points.insert(points.end(), controls.begin(), controls.end());
    } else if (piece.kind == Piece::Kind::Line) {
        points.insert(points.end(), {piece.at(0), piece.at(1)});
    } else {
        points.insert(points.end(), {piece.origin, piece.origin + piece.u, piece.origin + piece.v});
    }
}

}  // namespace

void CurveShape::findPlane() {
    std::vector<AcGePoint3d> points;
    for (const Span& span : spans)
        appendFrame(span.piece, points);
    const AcGePoint3d base = points.front();
    AcGeVector3d along;
    for (const AcGePoint3d& point : points) {
        if ((point - base).lengthSqrd() > along.lengthSqrd()) along = point - base;
    }
    const double size = along.length();
    AcGeVector3d across;
    for (const AcGePoint3d& point : points) {
        const AcGeVector3d off = along.crossProduct(point - base);
        if (off.lengthSqrd() > across.lengthSqrd()) across = off;
    }
    if (size == 0 || across.length() <= 1e-9 * size * size) {
        planarity = AcDb::kLinear;
        return;
    }
    AcGeVector3d up = across / across.length();
    if (up.z < -1e-12 || (std::abs(up.z) <= 1e-12 && up.x + up.y < 0)) up.negate();
    const bool flat = std::all_of(points.begin(), points.end(), [&](const AcGePoint3d& point) {
        return std::abs((point - base).dotProduct(up)) <= 1e-9 * size;
    });
    planarity = flat ? AcDb::kPlanar : AcDb::kNonPlanar;
    if (flat) normal = up;
}

}  // namespace sg::model
