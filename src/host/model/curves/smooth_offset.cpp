#include "host/model/curves/smooth_offset.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <memory>
#include <numbers>
#include <optional>
#include <vector>

#include "host/model/curves/curve_access.h"
#include "host/model/curves/math/roots.h"
#include "host/model/curves/spline.h"

// The offset is followed in short cubic arcs, round the corners too. Where it crosses itself the
// arcs are cut, what comes nearer to the original than the distance is dropped, and what is left
// is chained again.

namespace sg::model {

namespace {

struct Cubic {
    std::array<AcGePoint3d, 4> controls;

    AcGePoint3d at(double t) const {
        const double s = 1 - t;
        const auto& c = controls;
        return AcGePoint3d() + c[0].asVector() * (s * s * s) + c[1].asVector() * (3 * s * s * t) +
               c[2].asVector() * (3 * s * t * t) + c[3].asVector() * (t * t * t);
    }
    AcGeVector3d derivative(double t) const {
        const double s = 1 - t;
        const auto& c = controls;
        return (c[1] - c[0]) * (3 * s * s) + (c[2] - c[1]) * (6 * s * t) +
               (c[3] - c[2]) * (3 * t * t);
    }
    const AcGePoint3d& start() const { return controls[0]; }
    const AcGePoint3d& end() const { return controls[3]; }
    // With these end points and derivatives over a parameter that runs by `width`.
    static Cubic hermite(const AcGePoint3d& from, const AcGeVector3d& leaving,
                         const AcGePoint3d& to, const AcGeVector3d& arriving, double width) {
        return {{from, from + leaving * (width / 3), to - arriving * (width / 3), to}};
    }
    Cubic part(double from, double to) const {
        return hermite(at(from), derivative(from), at(to), derivative(to), to - from);
    }
    AcDbExtents box() const {
        AcDbExtents result;
        for (const AcGePoint3d& control : controls)
            result.addPoint(control);
        return result;
    }
};

bool overlap(const AcDbExtents& a, const AcDbExtents& b) {
    return a.minPoint().x <= b.maxPoint().x && b.minPoint().x <= a.maxPoint().x &&
           a.minPoint().y <= b.maxPoint().y && b.minPoint().y <= a.maxPoint().y;
}

double crossOf(const AcGeVector3d& a, const AcGeVector3d& b) {
    return a.x * b.y - a.y * b.x;
}

// Newton's method from a place near the crossing; nothing when it leads away from the arcs.
std::optional<std::pair<double, double>> sharpened(const Cubic& a, const Cubic& b, double onA,
                                                   double onB) {
    for (int step = 0; step < 12; ++step) {
        const AcGeVector3d alongA = a.derivative(onA);
        const AcGeVector3d alongB = b.derivative(onB);
        const AcGeVector3d off = b.at(onB) - a.at(onA);
        const double cross = crossOf(alongA, alongB);
        if (cross == 0) break;
        onA += crossOf(off, alongB) / cross;
        onB += crossOf(off, alongA) / cross;
        if (!(std::abs(onA - 0.5) < 1.5 && std::abs(onB - 0.5) < 1.5)) return std::nullopt;
    }
    const double slack = 1e-9;
    if (onA < -slack || onA > 1 + slack || onB < -slack || onB > 1 + slack) return std::nullopt;
    return std::pair(std::clamp(onA, 0.0, 1.0), std::clamp(onB, 0.0, 1.0));
}

struct Stretch {
    double from = 0;
    double to = 1;
    double middle() const { return (from + to) / 2; }
};

// Where two short arcs cross: they are halved while their boxes overlap, because near a point where
// they turn back no first guess is good enough for Newton's method.
std::optional<std::pair<double, double>> crossing(const Cubic& a, const Cubic& b, Stretch onA = {},
                                                  Stretch onB = {}, int halvings = 8) {
    if (!overlap(a.part(onA.from, onA.to).box(), b.part(onB.from, onB.to).box())) {
        return std::nullopt;
    }
    if (halvings == 0) return sharpened(a, b, onA.middle(), onB.middle());
    for (const Stretch& halfA : {Stretch{onA.from, onA.middle()}, Stretch{onA.middle(), onA.to}}) {
        for (const Stretch& halfB :
             {Stretch{onB.from, onB.middle()}, Stretch{onB.middle(), onB.to}}) {
            if (const auto found = crossing(a, b, halfA, halfB, halvings - 1)) return found;
        }
    }
    return std::nullopt;
}

class SmoothOffset {
  public:
    // The shape lies in a plane of constant z.
    SmoothOffset(const CurveShape& shape, double distance)
        : shape_(shape), distance_(distance), tolerance_(shape.tolerance()) {}

    // The chains of arcs that are left.
    std::vector<std::vector<Cubic>> run() {
        followAll();
        cut(boundsBeside());
        return chains();
    }

  private:
    static constexpr int kMostHalvings = 14;

    struct Place {
        AcGePoint3d point;
        AcGeVector3d derivative;
        AcGeVector3d tangent;
    };

    void followAll() {
        for (const Piece& piece : smoothPieces())
            follow(piece);
        if (shape_.closed && !arcs_.empty()) turnTo(arcs_.front().start(), firstDirection_);
    }

    // What bounds the neighbourhood of the original besides: its other side, which a curve that
    // crosses itself comes to, and circles round its ends.
    std::vector<Cubic> boundsBeside() const {
        SmoothOffset other(shape_, -distance_);
        other.followAll();
        if (shape_.closed) return other.arcs_;
        for (const AcGePoint3d& end :
             {shape_.spans.front().piece.start(), shape_.spans.back().piece.end()}) {
            other.appendTurn(end, {std::abs(distance_), 0, 0}, 2 * std::numbers::pi);
        }
        return other.arcs_;
    }

    std::vector<Piece> smoothPieces() const {
        std::vector<Piece> pieces;
        for (const Span& span : shape_.spans) {
            if (span.piece.kind != Piece::Kind::Spline) {
                pieces.push_back(span.piece);
                continue;
            }
            const std::vector<double> breaks = span.piece.spline->breaks();
            for (size_t i = 1; i < breaks.size(); ++i) {
                pieces.push_back(Piece::nurbs(span.piece.spline->part(breaks[i - 1], breaks[i])));
            }
        }
        return pieces;
    }

    // The point to the right of the curve's; where the curve stands still, its direction is that
    // of its neighbourhood.
    Place aside(const Piece& piece, double t) const {
        Nurbs::Values values = piece.values(t);
        double speed = values.first.length();
        if (speed <= 1e-9 * tolerance_) {
            const double inside = t + (piece.first + piece.last - 2 * t) * 1e-6;
            const AcGePoint3d point = values.point;
            values = piece.values(inside);
            values.point = point;
            speed = values.first.length();
        }
        const AcGeVector3d tangent = values.first / speed;
        const AcGeVector3d right(tangent.y, -tangent.x, 0);
        const double turning = crossOf(values.first, values.second) / (speed * speed * speed);
        return {values.point + right * distance_, values.first * (1 + distance_ * turning),
                tangent};
    }

    // Where the offset stands still to turn back: at the curve's centre of curvature.
    void appendCusps(const Piece& piece, double from, double to, std::vector<double>& stops) const {
        constexpr int kParts = 8;
        const auto pace = [&](double t) {
            const Nurbs::Values values = piece.values(t);
            const double speed = values.first.length();
            const double cross = crossOf(values.first, values.second);
            return speed * speed * speed + distance_ * cross;
        };
        double low = from;
        double atLow = pace(low);
        for (int part = 1; part <= kParts; ++part) {
            const double high = from + (to - from) * part / kParts;
            const double atHigh = pace(high);
            if ((atLow < 0) != (atHigh < 0)) {
                const double cusp = bisect(pace, low, high, atLow);
                if (cusp > from && cusp < to) stops.push_back(cusp);
            }
            low = high;
            atLow = atHigh;
        }
    }

    void follow(const Piece& piece) {
        std::vector<double> stops;
        for (const double sample : piece.samples()) {
            if (!stops.empty()) appendCusps(piece, stops.back(), sample, stops);
            stops.push_back(sample);
        }
        Place before = aside(piece, stops.front());
        if (arcs_.empty()) {
            firstDirection_ = before.tangent;
        } else {
            turnTo(before.point, before.tangent);
        }
        for (size_t i = 1; i < stops.size(); ++i) {
            const Place next = aside(piece, stops[i]);
            append(piece, stops[i - 1], before, stops[i], next, kMostHalvings);
            before = next;
        }
        lastDirection_ = before.tangent;
    }

    void append(const Piece& piece, double from, const Place& start, double to, const Place& end,
                int halvings) {
        const Cubic arc =
            Cubic::hermite(start.point, start.derivative, end.point, end.derivative, to - from);
        const auto fits = [&](double share) {
            const Place exact = aside(piece, from + (to - from) * share);
            return exact.point.distanceTo(arc.at(share)) <= tolerance_ / 20;
        };
        if (halvings == 0 || (fits(0.5) && fits(0.25) && fits(0.75))) {
            arcs_.push_back(arc);
            return;
        }
        const double middle = (from + to) / 2;
        const Place between = aside(piece, middle);
        append(piece, from, start, middle, between, halvings - 1);
        append(piece, middle, between, to, end, halvings - 1);
    }

    // Round a corner of the original, to a point that belongs to this direction.
    void turnTo(const AcGePoint3d& point, const AcGeVector3d& direction) {
        if (arcs_.back().end().distanceTo(point) <= tolerance_ / 100) return;
        const double turn =
            std::atan2(crossOf(lastDirection_, direction), lastDirection_.dotProduct(direction));
        const AcGeVector3d right(lastDirection_.y, -lastDirection_.x, 0);
        appendTurn(arcs_.back().end() - right * distance_, right * distance_, turn);
    }

    // An arc of a circle, from the spoke on.
    void appendTurn(const AcGePoint3d& center, AcGeVector3d spoke, double turn) {
        constexpr double kShortest = std::numbers::pi / 12;
        const auto count = static_cast<int>(std::ceil(std::abs(turn) / kShortest));
        for (int i = 0; i < count; ++i) {
            AcGeVector3d next = spoke;
            next.rotateBy(turn / count, AcGeVector3d::kZAxis);
            const AcGeVector3d leaving = AcGeVector3d(-spoke.y, spoke.x, 0);
            const AcGeVector3d arriving = AcGeVector3d(-next.y, next.x, 0);
            // A third of the way along the tangents reaches the arc at this length.
            const double width = 4 * std::tan(turn / count / 4);
            arcs_.push_back(
                Cubic::hermite(center + spoke, leaving, center + next, arriving, width));
            spoke = next;
        }
    }

    void cut(const std::vector<Cubic>& bounds) {
        std::vector<AcDbExtents> boxes, boundBoxes;
        for (const Cubic& arc : arcs_)
            boxes.push_back(arc.box());
        for (const Cubic& bound : bounds)
            boundBoxes.push_back(bound.box());
        std::vector<std::vector<double>> cuts(arcs_.size(), {0, 1});
        for (size_t i = 0; i < arcs_.size(); ++i) {
            for (size_t j = i + 2; j < arcs_.size(); ++j) {
                if (!overlap(boxes[i], boxes[j])) continue;
                if (const auto found = crossing(arcs_[i], arcs_[j])) {
                    cuts[i].push_back(found->first);
                    cuts[j].push_back(found->second);
                }
            }
            for (size_t j = 0; j < bounds.size(); ++j) {
                if (!overlap(boxes[i], boundBoxes[j])) continue;
                if (const auto found = crossing(arcs_[i], bounds[j])) {
                    cuts[i].push_back(found->first);
                }
            }
        }
        for (size_t i = 0; i < arcs_.size(); ++i) {
            std::sort(cuts[i].begin(), cuts[i].end());
            for (size_t k = 1; k < cuts[i].size(); ++k)
                keepClear(arcs_[i].part(cuts[i][k - 1], cuts[i][k]));
        }
    }

    void keepClear(const Cubic& arc) {
        if (arc.start().distanceTo(arc.end()) <= tolerance_ / 100) return;
        const auto isClear = [&](double share) {
            const AcGePoint3d point = arc.at(share);
            const double away = shape_.closest(point).point.distanceTo(point);
            return away >= std::abs(distance_) - tolerance_ / 2;
        };
        if (isClear(0.5) && isClear(0.2) && isClear(0.8)) kept_.push_back(arc);
    }

    // Of several the one furthest on: the others lie in folds that are no deeper than the
    // tolerance.
    size_t startingAt(const AcGePoint3d& point, const std::vector<bool>& taken, size_t from) const {
        for (size_t k = kept_.size(); k-- > 0;) {
            const size_t at = (from + k) % kept_.size();
            if (!taken[at] && kept_[at].start().distanceTo(point) <= tolerance_) return at;
        }
        return kept_.size();
    }

    // Folds leave bits behind, of which none goes round a closed curve.
    bool isBit(const std::vector<Cubic>& chain) const {
        double length = 0;
        for (const Cubic& arc : chain)
            length += arc.start().distanceTo(arc.end());
        if (length < 1e3 * tolerance_) return true;
        return shape_.closed && chain.front().start().distanceTo(chain.back().end()) > tolerance_;
    }

    // A chain begins where no arc leads to, or anywhere on a closed one.
    std::vector<std::vector<Cubic>> chains() const {
        std::vector<std::vector<Cubic>> result;
        std::vector<bool> taken(kept_.size(), false);
        for (size_t first = 0; first < kept_.size(); ++first) {
            if (taken[first]) continue;
            std::vector<Cubic> chain;
            for (size_t at = first; at < kept_.size();) {
                taken[at] = true;
                chain.push_back(kept_[at]);
                at = startingAt(kept_[at].end(), taken, at + 1);
            }
            const bool continues = !result.empty() && result.front().front().start().distanceTo(
                                                          chain.back().end()) <= tolerance_;
            if (continues) {
                result.front().insert(result.front().begin(), chain.begin(), chain.end());
            } else {
                result.push_back(std::move(chain));
            }
        }
        std::erase_if(result, [&](const auto& chain) { return isBit(chain); });
        return result;
    }

    const CurveShape& shape_;
    double distance_;
    double tolerance_;
    AcGeVector3d firstDirection_, lastDirection_;
    std::vector<Cubic> arcs_, kept_;
};

// Over the lengths of the chords, so that the parameter runs about evenly.
Nurbs joined(const std::vector<Cubic>& chain) {
    Nurbs curve;
    double at = 0;
    curve.knots.assign(4, at);
    curve.controls.push_back(chain.front().start());
    for (size_t i = 0; i < chain.size(); ++i) {
        at += std::max(chain[i].start().distanceTo(chain[i].end()), 1e-12);
        curve.knots.insert(curve.knots.end(), i + 1 == chain.size() ? 4 : 3, at);
        curve.controls.insert(curve.controls.end(), chain[i].controls.begin() + 1,
                              chain[i].controls.end());
    }
    return curve;
}

}  // namespace

Acad::ErrorStatus offsetSmoothly(const AcDbCurve& curve, double distance,
                                 AcDbVoidPtrArray& curves) {
    curve.assertReadEnabled();
    CurveShape shape;
    if (!CurveAccess::shapeOf(curve, shape)) return Acad::eDegenerateGeometry;
    if (shape.planarity == AcDb::kNonPlanar) return Acad::eNonPlanarEntity;
    if (!std::isfinite(distance) || shape.length() == 0) return Acad::eInvalidInput;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(shape.normal);
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(shape.normal);
    CurveShape flat = shape;
    for (Span& span : flat.spans)
        span.piece = span.piece.transformed(toPlane);
    const auto chains = SmoothOffset(flat, distance).run();
    for (const std::vector<Cubic>& chain : chains) {
        const Nurbs made = joined(chain).transformed(toWorld);
        const bool closed =
            made.controls.front().distanceTo(made.controls.back()) <= shape.tolerance();
        AcGePoint3dArray controls;
        AcGeDoubleArray knots;
        for (const AcGePoint3d& control : made.controls)
            controls.append(control);
        if (closed) controls.last() = controls.first();
        for (const double knot : made.knots)
            knots.append(knot);
        auto* const spline =
            new AcDbSpline(made.degree, false, closed, false, controls, knots, AcGeDoubleArray());
        spline->setPropertiesFrom(&curve);
        curves.append(spline);
    }
    return chains.empty() ? Acad::eInvalidInput : Acad::eOk;
}

}  // namespace sg::model
