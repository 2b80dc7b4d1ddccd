#include "host/model/entities/hatch/area.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "host/model/curves/math/angles.h"
#include "host/model/curves/math/roots.h"

// Pattern lines are cut in coordinates in which they lie along x. There the boundary is taken apart
// into stretches on which y only rises or only falls, whose ends are shared by neighbours to the
// last bit: a line crosses a stretch when one end is below it and the other is not. So a line
// through a corner, along an edge or touching an arc meets a closed chain an even number of times.

namespace sg::model {

namespace {

using Chain = std::vector<Piece>;

// Further away from where they are counted from, neighbouring lines and dashes are no longer told
// apart.
constexpr double kMostSteps = 1e12;

// A stretch of a piece between two parameters, y only rising or falling.
struct Run {
    const Piece* piece = nullptr;
    double from = 0;
    double to = 0;
    AcGePoint3d start, end;

    double crossing(double y) const;
};

double Run::crossing(double y) const {
    if (piece->kind == Piece::Kind::Line) {
        return start.x + (end.x - start.x) * ((y - start.y) / (end.y - start.y));
    }
    const auto height = [&](double t) { return piece->at(t).y - y; };
    const double atStart = height(from);
    // Where the piece's own end is off the shared one, the place is that end.
    if ((atStart < 0) == (height(to) < 0))
        return std::abs(atStart) < std::abs(height(to)) ? start.x : end.x;
    if (piece->kind == Piece::Kind::Conic) {
        const double size = std::hypot(piece->u.y, piece->v.y);
        const double top = std::atan2(piece->v.y, piece->u.y);
        const double off = std::acos(std::clamp((y - piece->origin.y) / size, -1.0, 1.0));
        for (const double angle : {top - off, top + off}) {
            const double t = angleFrom(angle, from - 1e-12);
            if (t <= to + 1e-12) return piece->at(t).x;
        }
    }
    return piece->at(bisect(height, from, to, atStart)).x;
}

// The parameters inside the piece where y turns.
std::vector<double> turningPoints(const Piece& piece) {
    std::vector<double> turns;
    if (piece.kind == Piece::Kind::Conic) {
        const double top = std::atan2(piece.v.y, piece.u.y);
        double t = angleFrom(top, piece.first);
        for (t -= std::numbers::pi; t < piece.last; t += std::numbers::pi) {
            if (t > piece.first) turns.push_back(t);
        }
    } else if (piece.kind == Piece::Kind::Spline) {
        const auto rise = [&](double t) { return piece.derivative(t).y; };
        const std::vector<double> stops = piece.samples();
        for (size_t i = 1; i < stops.size(); ++i) {
            const double inside = 1e-9 * (stops[i] - stops[i - 1]);
            const double low = stops[i - 1] + inside;
            const double high = stops[i] - inside;
            if (i > 1) turns.push_back(stops[i - 1]);
            const double atLow = rise(low);
            if ((atLow < 0) != (rise(high) < 0)) turns.push_back(bisect(rise, low, high, atLow));
        }
    }
    return turns;
}

// The runs of a closed chain of pieces.
std::vector<Run> runsOf(const Chain& chain) {
    std::vector<Run> runs;
    if (chain.empty()) return runs;
    const AcGePoint3d first = chain.front().start();
    AcGePoint3d at = first;
    for (size_t i = 0; i < chain.size(); ++i) {
        const Piece& piece = chain[i];
        double from = piece.first;
        for (const double turn : turningPoints(piece)) {
            const AcGePoint3d point = piece.at(turn);
            runs.push_back({&piece, from, turn, at, point});
            from = turn;
            at = point;
        }
        const AcGePoint3d end = i + 1 == chain.size() ? first : piece.end();
        runs.push_back({&piece, from, piece.last, at, end});
        at = end;
    }
    return runs;
}

bool isInside(const AcGePoint3d& point, const Chain& chain) {
    bool inside = false;
    for (const Run& run : runsOf(chain)) {
        if ((run.start.y < point.y) != (run.end.y < point.y) && run.crossing(point.y) > point.x) {
            inside = !inside;
        }
    }
    return inside;
}

std::vector<Chain> chosenChains(std::vector<Chain> all, HatchStyle style) {
    if (style == HatchStyle::Normal || all.size() < 2) return all;
    const size_t deepest = style == HatchStyle::Outer ? 1 : 0;
    std::vector<Chain> chosen;
    for (const Chain& chain : all) {
        const Piece& first = chain.front();
        const AcGePoint3d point = first.at((first.first + first.last) / 2);
        const auto depth =
            static_cast<size_t>(std::count_if(all.begin(), all.end(), [&](const Chain& other) {
                return &other != &chain && isInside(point, other);
            }));
        if (depth <= deepest) chosen.push_back(chain);
    }
    return chosen;
}

// Where lines meet the boundary: x of the places on the line y = index * step.
class Crossings {
  public:
    Crossings(double step, size_t most) : step_(step), most_(most) {}

    std::map<int64_t, std::vector<double>> places;

    // False when there would be too many.
    bool add(const Chain& chain) {
        for (const Run& run : runsOf(chain)) {
            if (!add(run)) return false;
        }
        return true;
    }

  private:
    bool add(const Run& run) {
        const double low = std::floor(std::min(run.start.y, run.end.y) / step_) - 1;
        const double high = std::ceil(std::max(run.start.y, run.end.y) / step_) + 1;
        if (!(high - low <= static_cast<double>(most_ - count_) + 4)) return false;
        if (std::max(std::abs(low), std::abs(high)) > kMostSteps) return false;
        for (double index = low; index <= high; ++index) {
            const double y = index * step_;
            if ((run.start.y < y) == (run.end.y < y)) continue;
            if (count_++ == most_) return false;
            places[static_cast<int64_t>(index)].push_back(run.crossing(y));
        }
        return true;
    }

    double step_;
    size_t most_;
    size_t count_ = 0;
};

// Cuts one line after the other, in its own coordinates, into dashes.
class DashCutter {
  public:
    DashCutter(const HatchLine& line, const AcGeMatrix3d& toPlane, size_t most)
        : line_(line), toPlane_(toPlane), most_(most) {
        for (const double dash : line.dashes)
            period_ += std::abs(dash);
    }

    std::vector<Dash> dashes;

    bool isPossible() const { return line_.dashes.empty() || period_ > kShortest; }
    // What shows between two places of the line at this y; `base` is where its dashes begin. False
    // when there would be too many.
    bool cut(double base, double y, double from, double to) {
        if (line_.dashes.empty()) {
            addStretch(from, to, y);
            return dashes.size() <= most_;
        }
        if (std::max(std::abs(from - base), std::abs(to - base)) > kMostSteps * period_)
            return false;
        const double expected = (to - from) / period_ * static_cast<double>(line_.dashes.size());
        if (!(expected <= static_cast<double>(most_ - dashes.size()))) return false;
        double at = base + std::floor((from - base) / period_) * period_;
        while (at <= to) {
            for (const double dash : line_.dashes) {
                const double end = at + std::abs(dash);
                if (dash > 0) addStretch(std::max(at, from), std::min(end, to), y);
                if (dash == 0 && at >= from && at <= to) add(at, at, y);
                at = end;
            }
        }
        return dashes.size() <= most_;
    }

  private:
    static constexpr double kShortest = 1e-10;

    void addStretch(double from, double to, double y) {
        if (to - from > kShortest) add(from, to, y);
    }
    void add(double from, double to, double y) {
        const AcGePoint3d start = toPlane_ * AcGePoint3d(from, y, 0);
        const AcGePoint3d end = toPlane_ * AcGePoint3d(to, y, 0);
        dashes.push_back({{start.x, start.y}, {end.x, end.y}});
    }

    const HatchLine& line_;
    const AcGeMatrix3d& toPlane_;
    size_t most_;
    double period_ = 0;
};

}  // namespace

HatchArea::HatchArea(const std::vector<HatchLoop>& loops, HatchStyle style) {
    std::vector<Chain> all;
    for (const HatchLoop& loop : loops) {
        Chain chain = loop.pieces();
        if (!chain.empty()) all.push_back(std::move(chain));
    }
    chains_ = chosenChains(std::move(all), style);
}

std::optional<std::vector<Dash>> HatchArea::dashes(const HatchLine& line, size_t most) const {
    const AcGeVector2d along = line.direction();
    AcGeMatrix3d toPlane;
    toPlane.setCoordSystem({line.base.x, line.base.y, 0}, {along.x, along.y, 0},
                           {-along.y, along.x, 0}, AcGeVector3d::kZAxis);
    const AcGeMatrix3d toLine = toPlane.inverse();
    const double across = line.offset.dotProduct(along.perpVector());
    const double shift = line.offset.dotProduct(along);
    DashCutter cutter(line, toPlane, most);
    if (!(std::abs(across) > 1e-10) || !std::isfinite(shift) || !cutter.isPossible()) {
        return std::nullopt;
    }
    Crossings crossings(std::abs(across), most);
    for (const Chain& chain : chains_) {
        Chain turned;
        for (const Piece& piece : chain)
            turned.push_back(piece.transformed(toLine));
        if (!crossings.add(turned)) return std::nullopt;
    }
    for (auto& [index, places] : crossings.places) {
        std::sort(places.begin(), places.end());
        const auto steps = static_cast<double>(index);
        const double base = across > 0 ? steps * shift : -steps * shift;
        for (size_t i = 0; i + 1 < places.size(); i += 2) {
            const bool fits = cutter.cut(base, steps * std::abs(across), places[i], places[i + 1]);
            if (!fits) return std::nullopt;
        }
    }
    return std::move(cutter.dashes);
}

}  // namespace sg::model
