#include "host/render/window_outline.h"

#include "host/model/core/object_access.h"

namespace sg::render {
namespace {

// Keeps the points of all lines as one chain.
class CollectingCanvas final : public Canvas {
  public:
    std::vector<AcGePoint3d> points;

    explicit CollectingCanvas(double unit) : unit_(unit) {}
    bool isMeasuring() const override { return false; }
    double unitsPerPixel() const override { return unit_; }
    double shownLength(const AcGeVector3d&) const override { return 0; }
    void line(const Look&, std::span<const AcGePoint3d> chain, bool, PatternRun) override {
        points.insert(points.end(), chain.begin(), chain.end());
    }
    void area(const Look&, std::span<const AcGePoint3d> chain, std::span<const uint32_t> counts,
              Rule) override {
        if (!counts.empty()) points.assign(chain.begin(), chain.begin() + counts.front());
    }
    void endless(const Look&, const AcGePoint3d&, const AcGeVector3d&, bool) override {}

  private:
    const double unit_;
};

}  // namespace

std::vector<AcGePoint3d> windowOutline(const AcDbViewport& window, Looks& looks,
                                       const DisplaySettings& settings) {
    if (auto* const border = model::peek<AcDbEntity>(window.clipEntityId())) {
        CollectingCanvas canvas(window.height() / 1000);
        EntityDraw draw(canvas, looks, settings);
        const model::Unguarded open(*border);
        border->worldDraw(&draw);
        if (canvas.points.size() > 2) return std::move(canvas.points);
    }
    const AcGePoint3d center = window.centerPoint();
    const AcGeVector3d x = AcGeVector3d::kXAxis * (window.width() / 2);
    const AcGeVector3d y = AcGeVector3d::kYAxis * (window.height() / 2);
    return {center - x - y, center + x - y, center + x + y, center - x + y};
}

}  // namespace sg::render
