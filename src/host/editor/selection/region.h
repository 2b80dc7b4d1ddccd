#pragma once

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include "base/export.h"
#include "host/model/curves/math/piece.h"
#include "platform/ge/point2d.h"

namespace sg {

// A rectangle along the axes. A new one is empty.
struct Box2d {
    double left = std::numeric_limits<double>::max();
    double bottom = std::numeric_limits<double>::max();
    double right = std::numeric_limits<double>::lowest();
    double top = std::numeric_limits<double>::lowest();

    bool isEmpty() const { return left > right; }
    void add(double x, double y) {
        left = std::min(left, x);
        bottom = std::min(bottom, y);
        right = std::max(right, x);
        top = std::max(top, y);
    }
    void add(const Box2d& other) {
        if (other.isEmpty()) return;
        add(other.left, other.bottom);
        add(other.right, other.top);
    }
    Box2d grown(double margin) const;
    bool meets(const Box2d& other) const {
        return left <= other.right && other.left <= right && bottom <= other.top &&
               other.bottom <= top;
    }
    bool holds(const Box2d& other) const {
        return left <= other.left && other.right <= right && bottom <= other.bottom &&
               other.top <= top;
    }
};

using Loop = std::vector<AcGePoint2d>;

// A part of the display plane that shapes are compared with: a polygon with its inside, or an open
// chain of lines. Edges belong to it; what comes as near as a billionth of its coordinates touches.
//
// Pieces lie in the display plane: their z is not looked at.
class SG_API SelectionRegion {
  public:
    // Any two opposite corners.
    static SelectionRegion rectangle(const AcGePoint2d& a, const AcGePoint2d& b);
    static SelectionRegion polygon(Loop points);
    static SelectionRegion fence(Loop points);

    bool isFence() const { return isFence_; }
    const Loop& points() const { return points_; }
    const Box2d& box() const { return box_; }

    bool contains(const AcGePoint2d& point) const;

    // Where a piece touches: how far along the region's edges, counted in edges, the first place
    // is; 0 for one that lies inside without touching an edge. nullopt: it lies outside.
    std::optional<double> meets(const model::Piece& piece) const;
    // The same for an area within loops, by the even-odd rule.
    std::optional<double> meetsArea(const std::vector<Loop>& loops) const;

    // Whether all of it lies inside; a fence has no inside.
    bool encloses(const model::Piece& piece) const;
    bool enclosesArea(const std::vector<Loop>& loops) const;

  private:
    SelectionRegion(Loop points, bool isFence);

    size_t edges() const { return isFence_ ? points_.size() - 1 : points_.size(); }
    const AcGePoint2d& from(size_t edge) const { return points_[edge]; }
    const AcGePoint2d& to(size_t edge) const { return points_[(edge + 1) % points_.size()]; }

    Loop points_;
    Box2d box_;
    double tolerance_ = 0;
    bool isFence_ = false;
    bool isRectangle_ = false;
};

}  // namespace sg
