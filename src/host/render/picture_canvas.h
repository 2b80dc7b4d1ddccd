#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include "host/render/canvas.h"
#include "host/render/clipping.h"
#include "host/render/picture_builder.h"
#include "host/render/projection.h"

namespace sg::render {

// A window of a picture onto the world.
struct PictureView {
    Projection projection;
    PixelBox box;       // what is outside is left out
    uint32_t clip = 0;  // as Pen has it
    // How many pixels a unit of linetypes is on paper; 0: linetypes are measured in the world.
    double pixelsPerPatternUnit = 0;
};

// Line weights in pixels.
struct WeightScale {
    double pixelsPerMillimetre = 96 / 25.4;
    bool areShown = true;
};

// Draws into a picture: projects, breaks lines into dashes, and leaves out what cannot be seen.
class PictureCanvas final : public Canvas {
  public:
    PictureCanvas(PictureBuilder& builder, Looks& looks, const WeightScale& weights,
                  const PictureView& view);

    bool isMeasuring() const override { return false; }
    double unitsPerPixel() const override { return 1 / view_.projection.pixelsPerUnit(); }
    double shownLength(const AcGeVector3d& vector) const override;
    void line(const Look& look, std::span<const AcGePoint3d> points, bool isClosed,
              PatternRun run) override;
    void area(const Look& look, std::span<const AcGePoint3d> points,
              std::span<const uint32_t> counts, Rule rule) override;
    void image(const Look& look, const std::shared_ptr<const ShownImage>& image,
               std::span<const AcGePoint3d> points, std::span<const uint32_t> counts) override;
    void endless(const Look& look, const AcGePoint3d& base, const AcGeVector3d& direction,
                 bool isBoth) override;

  private:
    struct Segments;
    class ChainMaker;

    const Pen& penOf(const Look& look, Pen::Kind kind);
    void fill(const Look& look, const Pen& pen, const PixelBox& reach,
              std::span<const uint32_t> counts);
    bool project(std::span<const AcGePoint3d> points);
    void drawUnbroken(const Pen& pen);
    void drawBroken(const Look& look, const Pen& pen, std::span<const AcGePoint3d> points,
                    bool isClosed, PatternRun run);
    void drawSegments(const Look& look, const Pen& pen, size_t first, size_t last, bool isClosed);
    void drawPatternText(const Look& look, const Linetype::Element& element, double scale,
                         double pixelsPerUnit, const AcGePoint2d& at, const AcGeVector2d& along);
    void addChain(const Pen& pen, std::span<const AcGePoint2d> points);

    PictureBuilder& builder_;
    Looks& looks_;
    const WeightScale weights_;
    const PictureView view_;
    std::unordered_map<AcDbObjectId, uint32_t> layers_;
    Pen pen_;
    std::vector<AcGePoint2d> pixels_;  // of the shape that is being drawn
    std::vector<double> lengths_;      // of its segments, in units of linetypes
    std::vector<PicturePoint> chain_;
};

}  // namespace sg::render
