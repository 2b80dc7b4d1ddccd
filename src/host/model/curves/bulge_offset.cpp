#include <algorithm>
#include <cmath>

#include "host/model/curves/bulge_path.h"
#include "host/model/curves/intersect.h"

// Every segment is moved to the side, and the moved segments are joined to a raw path that may
// cross itself. What comes nearer to the original than the distance is cut out of it at the
// crossings, and what is left is chained again.

namespace sg::model {

namespace {

struct Stretch {
    AcGePoint2d from, to;
    double bulge = 0;

    BulgePath path() const {
        BulgePath path;
        path.vertices = {{from, bulge, 0, 0}, {to, 0, 0, 0}};
        return path;
    }
    Piece piece() const { return path().segmentInPlane(0); }
};

AcGePoint2d flat(const AcGePoint3d& point) {
    return {point.x, point.y};
}

AcGeVector2d rightOf(const AcGeVector3d& direction) {
    const double length = direction.length();
    return length > 0 ? AcGeVector2d(direction.y, -direction.x) / length : AcGeVector2d();
}

// A segment moved to the right. An arc that would turn inside out becomes straight, and the
// cutting takes it away.
Stretch moved(const BulgePath& path, size_t index, double distance) {
    const Piece piece = path.segmentInPlane(index);
    const auto aside = [&](double t) {
        return flat(piece.at(t)) + rightOf(piece.derivative(t)) * distance;
    };
    Stretch stretch{aside(piece.first), aside(piece.last), 0};
    if (piece.kind == Piece::Kind::Conic) {
        const bool counterClockwise = path.vertices[index].bulge > 0;
        const double radius = piece.radius() + (counterClockwise ? distance : -distance);
        if (radius > 0) stretch.bulge = path.vertices[index].bulge;
    }
    return stretch;
}

class Offsetter {
  public:
    Offsetter(const BulgePath& path, double distance)
        : path_(path), distance_(distance), tolerance_(1e-7 * std::abs(distance)) {
        CurveShape& shape = original_;
        for (size_t i = 0; i < path.segments(); ++i) {
            const Piece piece = path.segmentInPlane(i);
            if (piece.length(piece.first, piece.last) > 0) {
                shape.spans.emplace_back(piece);
                used_.push_back(i);
            }
        }
    }

    std::vector<BulgePath> run() {
        if (used_.empty()) return {};
        buildRaw();
        cut();
        return chain();
    }

  private:
    void buildRaw() {
        for (size_t k = 0; k < used_.size(); ++k) {
            const Stretch next = moved(path_, used_[k], distance_);
            if (!raw_.empty()) join(next.from, k);
            raw_.push_back(next);
        }
        if (!path_.closed) return;
        const Stretch first = raw_.front();
        join(first.from, 0);
        if (raw_.back().to.isEqualTo(first.from)) return;
        // A mitre moved the end of the last stretch; the first one starts there.
        raw_.front().from = raw_.back().to;
    }

    // Leads on from the last stretch to the start of the one that belongs to used_[k].
    void join(const AcGePoint2d& start, size_t k) {
        const AcGePoint2d end = raw_.back().to;
        if (end.distanceTo(start) <= 1e-9 * std::abs(distance_)) return;
        const size_t before = k == 0 ? used_.size() - 1 : k - 1;
        const Piece from = original_.spans[before].piece;
        const Piece to = original_.spans[k].piece;
        const AcGeVector3d ahead = from.derivative(from.last);
        const AcGeVector3d onward = to.derivative(to.first);
        const double turn = std::atan2(ahead.x * onward.y - ahead.y * onward.x,
                                       ahead.x * onward.x + ahead.y * onward.y);
        const bool outside = turn * distance_ > 0;
        if (!outside) {
            raw_.push_back({end, start, 0});
            return;
        }
        const AcGePoint2d corner = flat(to.start());
        const bool straight = from.kind == Piece::Kind::Line && to.kind == Piece::Kind::Line;
        if (straight && std::abs(turn) < 2.5) {
            const AcGeVector2d middle = (end - corner) + (start - corner);
            const AcGePoint2d tip =
                corner + middle * (2 * distance_ * distance_ / middle.lengthSqrd());
            raw_.push_back({end, tip, 0});
            raw_.push_back({tip, start, 0});
        } else {
            raw_.push_back({end, start, std::tan(turn / 4)});
        }
    }

    void appendCuts(const Piece& piece, const Piece& other, std::vector<double>& cuts) const {
        std::vector<Meeting> meetings;
        meetPieces(piece, other, meetings);
        for (const Meeting& meeting : meetings)
            cuts.push_back(meeting.onFirst);
    }

    void cut() {
        std::vector<Piece> pieces;
        for (const Stretch& stretch : raw_)
            pieces.push_back(stretch.piece());
        // What bounds the neighbourhood of the original besides: its other side, which a path that
        // crosses itself comes to, and round its ends.
        Offsetter opposite(path_, -distance_);
        opposite.buildRaw();
        std::vector<Piece> others;
        for (const Stretch& stretch : opposite.raw_)
            others.push_back(stretch.piece());
        if (!path_.closed) {
            const double radius = std::abs(distance_);
            for (const AcGePoint3d& end :
                 {original_.spans.front().piece.start(), original_.spans.back().piece.end()}) {
                others.push_back(
                    Piece::conic(end, {radius, 0, 0}, {0, radius, 0}, 0, 2 * std::numbers::pi));
            }
        }
        for (size_t i = 0; i < pieces.size(); ++i) {
            std::vector<double> cuts{pieces[i].first, pieces[i].last};
            for (size_t j = 0; j < pieces.size(); ++j) {
                if (j != i) appendCuts(pieces[i], pieces[j], cuts);
            }
            for (const Piece& other : others)
                appendCuts(pieces[i], other, cuts);
            std::sort(cuts.begin(), cuts.end());
            keepClear(i, pieces[i], cuts);
        }
    }

    void keepClear(size_t index, const Piece& piece, const std::vector<double>& cuts) {
        for (size_t k = 1; k < cuts.size(); ++k) {
            const double from = cuts[k - 1];
            const double to = cuts[k];
            if (piece.length(from, to) <= tolerance_) continue;
            const auto clear = [&](double share) {
                const AcGePoint3d point = piece.at(from + (to - from) * share);
                return original_.closest(point).point.distanceTo(point) >=
                       std::abs(distance_) - tolerance_;
            };
            if (!clear(0.5) || !clear(0.25) || !clear(0.75)) continue;
            const double whole = piece.last - piece.first;
            const double bulge = std::tan(std::atan(raw_[index].bulge) * ((to - from) / whole));
            keep({flat(piece.at(from)), flat(piece.at(to)), bulge});
        }
    }

    // Raw stretches may run over each other.
    void keep(const Stretch& stretch) {
        const double near = 100 * tolerance_;
        const bool known = std::any_of(kept_.begin(), kept_.end(), [&](const Stretch& there) {
            return there.from.distanceTo(stretch.from) <= near &&
                   there.to.distanceTo(stretch.to) <= near &&
                   std::abs(there.bulge - stretch.bulge) <= 1e-6;
        });
        if (!known) kept_.push_back(stretch);
    }

    // The kept stretches stand in the order of the original; one that is not followed by its
    // neighbour goes on where another starts.
    std::vector<BulgePath> chain() {
        std::vector<BulgePath> result;
        std::vector<bool> taken(kept_.size(), false);
        const double near = 100 * tolerance_;
        for (size_t first = 0; first < kept_.size(); ++first) {
            if (taken[first]) continue;
            std::vector<size_t> run{first};
            taken[first] = true;
            for (size_t next = first; next < kept_.size();) {
                next = following(kept_[run.back()].to, taken, near);
                if (next == kept_.size()) break;
                taken[next] = true;
                run.push_back(next);
            }
            // What leads here, when the chain was entered in its middle.
            for (;;) {
                const size_t before = leading(kept_[run.front()].from, taken, near);
                if (before == kept_.size()) break;
                taken[before] = true;
                run.insert(run.begin(), before);
            }
            result.push_back(pathOf(run, near));
        }
        return result;
    }

    size_t following(const AcGePoint2d& end, const std::vector<bool>& taken, double near) const {
        for (size_t i = 0; i < kept_.size(); ++i) {
            if (!taken[i] && kept_[i].from.distanceTo(end) <= near) return i;
        }
        return kept_.size();
    }

    size_t leading(const AcGePoint2d& start, const std::vector<bool>& taken, double near) const {
        for (size_t i = 0; i < kept_.size(); ++i) {
            if (!taken[i] && kept_[i].to.distanceTo(start) <= near) return i;
        }
        return kept_.size();
    }

    BulgePath pathOf(const std::vector<size_t>& run, double near) const {
        BulgePath path = path_;
        path.closed = false;
        path.vertices.clear();
        for (const size_t index : run)
            append(path, kept_[index]);
        const AcGePoint2d end = kept_[run.back()].to;
        path.closed = end.distanceTo(kept_[run.front()].from) <= near && run.size() > 1;
        if (!path.closed) path.vertices.push_back({end, 0, 0, 0});
        keepWidth(path);
        return path;
    }

    // Straight stretches that go on in the same direction, as at a mitre, are one segment.
    static void append(BulgePath& path, const Stretch& stretch) {
        std::vector<BulgeVertex>& vertices = path.vertices;
        if (!vertices.empty() && vertices.back().bulge == 0 && stretch.bulge == 0) {
            const AcGeVector2d before = stretch.from - vertices.back().point;
            const AcGeVector2d here = stretch.to - stretch.from;
            const double cross = before.x * here.y - before.y * here.x;
            if (before.dotProduct(here) > 0 &&
                std::abs(cross) <= 1e-9 * before.length() * here.length()) {
                return;
            }
        }
        vertices.push_back({stretch.from, stretch.bulge, 0, 0});
    }

    void keepWidth(BulgePath& path) const {
        const double width = path_.vertices.front().startWidth;
        for (const BulgeVertex& vertex : path_.vertices) {
            if (vertex.startWidth != width || vertex.endWidth != width) return;
        }
        for (BulgeVertex& vertex : path.vertices)
            vertex.startWidth = vertex.endWidth = width;
    }

    const BulgePath& path_;
    double distance_;
    double tolerance_;
    CurveShape original_;       // in the plane, without segments of no length
    std::vector<size_t> used_;  // the segments that it has
    std::vector<Stretch> raw_;
    std::vector<Stretch> kept_;
};

}  // namespace

std::vector<BulgePath> BulgePath::offset(double distance) const {
    if (distance == 0) return {*this};
    return Offsetter(*this, distance).run();
}

}  // namespace sg::model
