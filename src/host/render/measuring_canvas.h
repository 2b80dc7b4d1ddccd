#pragma once

#include <algorithm>

#include "host/render/canvas.h"
#include "platform/ge/point2d.h"

namespace sg::render {

// A rectangle of a view, in its coordinates.
struct ViewBox {
    AcGePoint2d low{1e300, 1e300};
    AcGePoint2d high{-1e300, -1e300};

    bool isEmpty() const { return low.x > high.x; }
    double width() const { return high.x - low.x; }
    double height() const { return high.y - low.y; }
    AcGePoint2d center() const { return {(low.x + high.x) / 2, (low.y + high.y) / 2}; }
    void add(double x, double y) {
        low.set(std::min(low.x, x), std::min(low.y, y));
        high.set(std::max(high.x, x), std::max(high.y, y));
    }
};

// Finds how far a drawing reaches in a view.
class MeasuringCanvas final : public Canvas {
  public:
    explicit MeasuringCanvas(const AcGeMatrix3d& worldToView) : toView_(worldToView) {}

    const ViewBox& box() const { return box_; }

    bool isMeasuring() const override { return true; }
    double unitsPerPixel() const override { return 0; }
    double shownLength(const AcGeVector3d& vector) const override;
    void line(const Look& look, std::span<const AcGePoint3d> points, bool isClosed,
              PatternRun run) override;
    void area(const Look& look, std::span<const AcGePoint3d> points,
              std::span<const uint32_t> counts, Rule rule) override;
    void endless(const Look&, const AcGePoint3d&, const AcGeVector3d&, bool) override {}

  private:
    void add(std::span<const AcGePoint3d> points);

    AcGeMatrix3d toView_;
    ViewBox box_;
};

}  // namespace sg::render
