#include "host/editor/selection/region.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/model/curves/math/roots.h"

namespace sg {
namespace {

using model::Piece;

AcGePoint2d flat(const AcGePoint3d& point) {
    return {point.x, point.y};
}
AcGeVector2d flat(const AcGeVector3d& vector) {
    return {vector.x, vector.y};
}
double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}
double dot(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.x + a.y * b.y;
}

// One straight edge, and what of a piece lies on it.
class Edge {
  public:
    Edge(const AcGePoint2d& from, const AcGePoint2d& to, double tolerance)
        : from_(from), along_(to - from), length_(along_.length()), tolerance_(tolerance) {
        if (length_ > 0) along_ = {along_.x / length_, along_.y / length_};
    }

    // How far along the edge the point is, from 0 to 1; nullopt for one that is not on it.
    std::optional<double> place(const AcGePoint2d& point) const {
        const AcGeVector2d off = point - from_;
        if (std::abs(cross(along_, off)) > tolerance_) return std::nullopt;
        const double at = dot(along_, off);
        if (at < -tolerance_ || at > length_ + tolerance_) return std::nullopt;
        return length_ == 0 ? 0 : std::clamp(at / length_, 0.0, 1.0);
    }

    // Appends the parameters at which the piece meets the edge; of a stretch that lies on it the
    // ends.
    void appendMeetings(const Piece& piece, std::vector<double>& parameters) const {
        if (length_ == 0) return;
        switch (piece.kind) {
            case Piece::Kind::Line:
                return appendLine(piece, parameters);
            case Piece::Kind::Conic:
                return appendConic(piece, parameters);
            case Piece::Kind::Spline:
                return appendSpline(piece, parameters);
        }
    }

  private:
    double height(const AcGePoint2d& point) const { return cross(along_, point - from_); }

    void take(const Piece& piece, double t, double slack, std::vector<double>& parameters) const {
        if (t < piece.first - slack || t > piece.last + slack) return;
        t = std::clamp(t, piece.first, piece.last);
        if (place(flat(piece.at(t)))) parameters.push_back(t);
    }

    void appendLine(const Piece& piece, std::vector<double>& parameters) const {
        const AcGePoint2d origin = flat(piece.origin);
        const AcGeVector2d u = flat(piece.u);
        const double speed = u.length();
        if (speed <= 1e-300) {  // seen from its end: a point
            if (place(origin)) parameters.push_back(std::clamp(0.0, piece.first, piece.last));
            return;
        }
        const double slack = tolerance_ / speed;
        const double rise = cross(along_, u);
        if (std::abs(rise) > 1e-12 * speed) {
            return take(piece, -height(origin) / rise, slack, parameters);
        }
        if (std::abs(height(origin)) > tolerance_) return;
        const AcGePoint2d ends[] = {from_, from_ + along_ * length_};
        for (const AcGePoint2d& end : ends)
            take(piece, dot(end - origin, u) / (speed * speed), slack, parameters);
        if (std::isfinite(piece.first)) take(piece, piece.first, 0, parameters);
        if (std::isfinite(piece.last)) take(piece, piece.last, 0, parameters);
    }

    // height(center) + cos(t) a + sin(t) b = 0
    void appendConic(const Piece& piece, std::vector<double>& parameters) const {
        const double a = cross(along_, flat(piece.u));
        const double b = cross(along_, flat(piece.v));
        const double reach = std::hypot(a, b);
        const double level = -height(flat(piece.origin));
        if (std::abs(level) > reach + tolerance_) return;
        if (reach <= tolerance_) {  // seen from its edge, along this one
            for (const double t : piece.samples())
                take(piece, t, 0, parameters);
            return;
        }
        const double middle = std::atan2(b, a);
        const double half = std::acos(std::clamp(level / reach, -1.0, 1.0));
        constexpr double kTurn = 2 * std::numbers::pi;
        const double slack = tolerance_ / reach;
        for (const double root : {middle - half, middle + half}) {
            const double turns = std::ceil((piece.first - slack - root) / kTurn);
            for (double t = root + turns * kTurn; t <= piece.last + slack; t += kTurn)
                take(piece, t, slack, parameters);
        }
    }

    // Between samples the spline bends one way, so that its height has one extreme at most.
    void appendSpline(const Piece& piece, std::vector<double>& parameters) const {
        const auto heightAt = [&](double t) { return height(flat(piece.at(t))); };
        const auto riseAt = [&](double t) { return cross(along_, flat(piece.derivative(t))); };
        const std::vector<double> samples = piece.samples();
        for (const double t : samples)
            take(piece, t, 0, parameters);
        for (size_t i = 1; i < samples.size(); ++i) {
            const double low = samples[i - 1], high = samples[i];
            const double riseLow = riseAt(low);
            double extreme = high;
            if (riseLow * riseAt(high) < 0) {
                extreme = model::bisect(riseAt, low, high, riseLow);
                take(piece, extreme, 0, parameters);
            }
            appendRoot(piece, heightAt, low, extreme, parameters);
            if (extreme < high) appendRoot(piece, heightAt, extreme, high, parameters);
        }
    }

    template <class Function>
    void appendRoot(const Piece& piece, const Function& f, double low, double high,
                    std::vector<double>& parameters) const {
        const double atLow = f(low);
        if (atLow * f(high) >= 0) return;
        take(piece, model::bisect(f, low, high, atLow), 0, parameters);
    }

    AcGePoint2d from_;
    AcGeVector2d along_;  // a unit vector
    double length_;
    double tolerance_;
};

Piece edgeOf(const Loop& loop, size_t index) {
    const AcGePoint2d& a = loop[index];
    const AcGePoint2d& b = loop[(index + 1) % loop.size()];
    return Piece::line({a.x, a.y, 0}, {b.x, b.y, 0});
}

// By the even-odd rule; points on an edge may be either.
bool isInside(const Loop& loop, const AcGePoint2d& point) {
    bool inside = false;
    for (size_t i = 0; i < loop.size(); ++i) {
        const AcGePoint2d& a = loop[i];
        const AcGePoint2d& b = loop[(i + 1) % loop.size()];
        if ((a.y > point.y) == (b.y > point.y)) continue;
        if (point.x < a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x)) inside = !inside;
    }
    return inside;
}

}  // namespace

Box2d Box2d::grown(double margin) const {
    return {left - margin, bottom - margin, right + margin, top + margin};
}

SelectionRegion::SelectionRegion(Loop points, bool isFence)
    : points_(std::move(points)), isFence_(isFence) {
    double largest = 0;
    for (const AcGePoint2d& point : points_) {
        box_.add(point.x, point.y);
        largest = std::max({largest, std::abs(point.x), std::abs(point.y)});
    }
    tolerance_ = 1e-9 * std::max(largest, 1e-3);
}

SelectionRegion SelectionRegion::rectangle(const AcGePoint2d& a, const AcGePoint2d& b) {
    SelectionRegion region({a, {b.x, a.y}, b, {a.x, b.y}}, false);
    region.isRectangle_ = true;
    return region;
}

SelectionRegion SelectionRegion::polygon(Loop points) {
    return SelectionRegion(std::move(points), false);
}

SelectionRegion SelectionRegion::fence(Loop points) {
    return SelectionRegion(std::move(points), true);
}

bool SelectionRegion::contains(const AcGePoint2d& point) const {
    if (isRectangle_) {
        return box_.grown(tolerance_).holds({point.x, point.y, point.x, point.y});
    }
    for (size_t edge = 0; edge < edges(); ++edge) {
        if (Edge(from(edge), to(edge), tolerance_).place(point)) return true;
    }
    return !isFence_ && isInside(points_, point);
}

std::optional<double> SelectionRegion::meets(const Piece& piece) const {
    std::vector<double> parameters;
    std::optional<double> first;
    for (size_t index = 0; index < edges() && !first; ++index) {
        const Edge edge(from(index), to(index), tolerance_);
        parameters.clear();
        edge.appendMeetings(piece, parameters);
        for (const double t : parameters) {
            const double at = static_cast<double>(index) + *edge.place(flat(piece.at(t)));
            if (!first || at < *first) first = at;
        }
    }
    if (first || isFence_ || !piece.isBounded()) return first;
    return contains(flat(piece.start())) ? std::optional(0.0) : std::nullopt;
}

std::optional<double> SelectionRegion::meetsArea(const std::vector<Loop>& loops) const {
    bool startsInside = false;
    for (const Loop& loop : loops) {
        if (isInside(loop, points_.front())) startsInside = !startsInside;
    }
    if (startsInside) return 0.0;
    std::optional<double> first;
    for (const Loop& loop : loops) {
        for (size_t i = 0; i < loop.size(); ++i) {
            const auto at = meets(edgeOf(loop, i));
            if (at && (!first || *at < *first)) first = at;
        }
    }
    return first;
}

bool SelectionRegion::encloses(const Piece& piece) const {
    if (isFence_ || !piece.isBounded()) return false;
    if (isRectangle_) {
        AcDbExtents reach;
        piece.addExtents(reach);
        return box_.grown(tolerance_)
            .holds(
                {reach.minPoint().x, reach.minPoint().y, reach.maxPoint().x, reach.maxPoint().y});
    }
    // Between neighbouring meetings with the edges a piece is on one side.
    std::vector<double> parameters{piece.first, piece.last};
    for (size_t edge = 0; edge < edges(); ++edge)
        Edge(from(edge), to(edge), tolerance_).appendMeetings(piece, parameters);
    std::sort(parameters.begin(), parameters.end());
    if (!contains(flat(piece.start())) || !contains(flat(piece.end()))) return false;
    for (size_t i = 1; i < parameters.size(); ++i) {
        const double middle = parameters[i - 1] + (parameters[i] - parameters[i - 1]) / 2;
        if (!contains(flat(piece.at(middle)))) return false;
    }
    return true;
}

bool SelectionRegion::enclosesArea(const std::vector<Loop>& loops) const {
    for (const Loop& loop : loops) {
        for (size_t i = 0; i < loop.size(); ++i) {
            if (!encloses(edgeOf(loop, i))) return false;
        }
    }
    return true;
}

}  // namespace sg
