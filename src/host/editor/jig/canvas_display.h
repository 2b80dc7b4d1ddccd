#pragma once

#include <cstddef>
#include <memory>

#include "host/editor/jig/drag_display.h"
#include "host/render/canvas.h"
#include "host/render/entity_draw.h"
#include "host/render/looks.h"

namespace sg {

// Draws what is dragged on a canvas, as entities of a drawing are drawn.
class SG_API CanvasDisplay : public DragDisplay {
  public:
    // `ground` is 0xRRGGBB. The canvas outlives this.
    CanvasDisplay(render::Canvas& canvas, uint32_t ground);
    ~CanvasDisplay() override;

    void show(AcDbDatabase& database, AcGiDrawable& dragged) override;
    void clear() override;

  private:
    void begin(AcDbDatabase& database);

    render::Canvas& canvas_;
    const uint32_t ground_;
    AcDbDatabase* database_ = nullptr;  // null when nothing shows; then there is no draw either
    std::unique_ptr<render::Looks> looks_;
    std::unique_ptr<render::EntityDraw> draw_;
};

// Counts what it is given.
class SG_API CountingCanvas final : public render::Canvas {
  public:
    size_t lines = 0;
    size_t areas = 0;
    size_t points = 0;  // of both

    bool isMeasuring() const override { return false; }
    double unitsPerPixel() const override { return unitsPerPixel_; }
    double shownLength(const AcGeVector3d& vector) const override {
        return vector.length() / unitsPerPixel_;
    }
    void setUnitsPerPixel(double units) { unitsPerPixel_ = units; }
    void line(const render::Look&, std::span<const AcGePoint3d> points, bool,
              render::PatternRun) override;
    void area(const render::Look&, std::span<const AcGePoint3d> points, std::span<const uint32_t>,
              Rule) override;
    void endless(const render::Look&, const AcGePoint3d&, const AcGeVector3d&, bool) override;

  private:
    double unitsPerPixel_ = 0.01;
};

// Where no screen is: the drawing is done and goes nowhere.
class SG_API HeadlessDisplay final : public DragDisplay {
  public:
    HeadlessDisplay() : display_(canvas_, 0xFFFFFF) {}
    void show(AcDbDatabase& database, AcGiDrawable& dragged) override {
        display_.show(database, dragged);
    }
    void clear() override { display_.clear(); }

  private:
    CountingCanvas canvas_;
    CanvasDisplay display_;
};

}  // namespace sg
