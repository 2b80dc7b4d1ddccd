#include "companion/prism_facets.h"

#include <algorithm>
#include <cmath>

#include "companion/facets.h"
#include "companion/shape/outline_arc.h"
#include "companion/shape/reach.h"

namespace sg::companion {
namespace {

constexpr double kLeastTurn = 1e-6;  // of a facet; an arc is at most a full turn
constexpr double kFlat = 1e-9;       // the cosine of a direction that lies in the outline's plane

// A piece of the outline: the points from its own one to the one before the next piece's.
struct Side {
    std::vector<AcGePoint3d> points;
    AcGeVector3d first, last;  // its directions where it begins and ends
    bool isArc = false;
};

Side straightSide(const AcGePoint3d& from, const AcGePoint3d& to) {
    const AcGeVector3d direction = (to - from).normal();
    return {{from}, direction, direction, false};
}

Side arcSide(const OutlineArc& arc, double size) {
    Side side{{}, arc.directionAt(0), arc.directionAt(1), true};
    const double sagitta = std::min(1.0, kFacetDeviation * size / arc.start.length());
    const double turn = std::clamp(2 * std::acos(1 - sagitta), kLeastTurn, kFacetTurn);
    const int chords = std::max(1, static_cast<int>(std::ceil(arc.turn / turn - 1e-9)));
    for (int i = 0; i < chords; ++i)
        side.points.push_back(arc.at(static_cast<double>(i) / chords));
    return side;
}

std::vector<Side> sidesOf(const Outline& outline, double size) {
    std::vector<Side> sides;
    for (size_t i = 0; i < outline.size(); ++i) {
        const auto arc = arcOf(outline, i);
        sides.push_back(
            arc ? arcSide(*arc, size)
                : straightSide(outline[i].from, outline[(i + 1) % outline.size()].from));
    }
    return sides;
}

class Faceter {
  public:
    Faceter(std::vector<Side> sides, const AcGeVector3d& along)
        : sides_(std::move(sides)), along_(along) {}

    // Null when there is no area, or the outline moves within its plane.
    std::unique_ptr<const Facets> run() {
        for (const Side& side : sides_)
            near_.insert(near_.end(), side.points.begin(), side.points.end());
        const AcGeVector3d area = areaVector();
        const double lean = area.dotProduct(along_);
        if (!(std::abs(lean) > kFlat * area.length() * along_.length())) return nullptr;
        isTurned_ = lean < 0;
        addPoints();
        addCaps();
        size_t at = 0;
        for (size_t i = 0; i < sides_.size(); ++i) {
            addSide(i, at);
            at += sides_[i].points.size();
        }
        return std::move(facets_);
    }

  private:
    AcGeVector3d areaVector() const {
        AcGeVector3d sum;
        for (size_t i = 1; i + 1 < near_.size(); ++i)
            sum += (near_[i] - near_[0]).crossProduct(near_[i + 1] - near_[0]);
        return sum;
    }

    // Those of the outline, and behind them those that it is moved to.
    void addPoints() {
        facets_->points = near_;
        for (const AcGePoint3d& point : near_)
            facets_->points.push_back(point + along_);
        for (const AcGePoint3d& point : facets_->points)
            facets_->extents.addPoint(point);
    }
    int32_t indexOf(size_t point, bool isFar) const {
        return static_cast<int32_t>(point % near_.size() + (isFar ? near_.size() : 0));
    }

    void beginFace() { facets_->starts.push_back(static_cast<uint32_t>(facets_->faces.size())); }
    // Corners as for an outline that runs counter-clockwise seen from where it is moved to.
    void addFacet(std::vector<int32_t> corners) {
        if (isTurned_) std::reverse(corners.begin(), corners.end());
        facets_->faces.push_back(static_cast<int32_t>(corners.size()));
        facets_->faces.insert(facets_->faces.end(), corners.begin(), corners.end());
    }

    void addCaps() {
        for (const bool isFar : {false, true}) {
            std::vector<int32_t> corners;
            for (size_t i = 0; i < near_.size(); ++i)
                corners.push_back(indexOf(i, isFar));
            if (!isFar) std::reverse(corners.begin(), corners.end());
            beginFace();
            addFacet(std::move(corners));
        }
    }

    // The wall over a side, of which `at` is the first point, and its edges.
    void addSide(size_t number, size_t at) {
        const Side& side = sides_[number];
        const size_t count = side.points.size();
        beginFace();
        for (size_t i = at; i < at + count; ++i) {
            const int32_t a = indexOf(i, false), b = indexOf(i + 1, false);
            const int32_t c = indexOf(i + 1, true), d = indexOf(i, true);
            if (side.isArc) {
                addFacet({a, b, c});
                addFacet({a, c, d});
            } else {
                addFacet({a, b, c, d});
            }
        }
        const Side& before = sides_[(number + sides_.size() - 1) % sides_.size()];
        const bool isSmooth = before.last.angleTo(side.first) < kSmoothEdge;
        auto& across = isSmooth ? facets_->smoothEdges : facets_->edges;
        across.push_back({pointAt(at, false), pointAt(at, true)});
        for (const bool isFar : {false, true}) {
            std::vector<AcGePoint3d> chain;
            for (size_t i = at; i <= at + count; ++i)
                chain.push_back(pointAt(i, isFar));
            facets_->edges.push_back(std::move(chain));
        }
    }
    const AcGePoint3d& pointAt(size_t point, bool isFar) const {
        return facets_->points[static_cast<size_t>(indexOf(point, isFar))];
    }

    const std::vector<Side> sides_;
    const AcGeVector3d along_;
    std::vector<AcGePoint3d> near_;  // of the outline
    bool isTurned_ = false;          // it runs clockwise seen from where it is moved to
    std::unique_ptr<Facets> facets_ = std::make_unique<Facets>();
};

}  // namespace

std::unique_ptr<const Facets> prismFacets(const Steps& steps) {
    if (steps.size() != 1) return nullptr;
    const auto* const added = std::get_if<AddBody>(&steps.front().action);
    const auto* const body = added ? std::get_if<Extrusion>(&added->body) : nullptr;
    if (body == nullptr || body->outlines.size() != 1) return nullptr;
    const AcDbExtents reach = reachOf(steps).value_or(AcDbExtents());
    const double size = reach.isEmpty() ? 0 : (reach.maxPoint() - reach.minPoint()).length();
    if (!(size > 0)) return nullptr;
    return Faceter(sidesOf(body->outlines.front(), size), body->along).run();
}

}  // namespace sg::companion
