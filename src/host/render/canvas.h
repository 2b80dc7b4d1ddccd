#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "host/render/looks.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"

namespace sg::render {

// How a linetype runs along a chain of points.
enum class PatternRun : uint8_t {
    none,       // the line is unbroken
    through,    // over the corners
    perSegment  // from corner to corner
};

class ImageFiles;

// What an image entity shows, in world coordinates.
struct ShownImage {
    ImageFiles* files = nullptr;
    std::wstring file;          // as ImageFiles::find answers it
    AcGePoint3d corner;         // the upper left one
    AcGeVector3d right, down;   // along its edges
    int brightness = 50;        // 0 to 100
    int contrast = 50;          // 0 to 100
    int fade = 0;               // into the ground, 0 to 100
    bool isTransparent = true;  // where its pixels are
};

// Takes shapes in world coordinates.
class Canvas {
  public:
    virtual ~Canvas() = default;

    // Whether shapes are only measured: what reaches as far may stand for a shape then.
    virtual bool isMeasuring() const = 0;
    // Drawing units; 0 when it is not known.
    virtual double unitsPerPixel() const = 0;
    // How far a vector reaches in the view, in pixels, or in units while that is not known.
    virtual double shownLength(const AcGeVector3d& vector) const = 0;

    // A chain of points; one point is a dot.
    virtual void line(const Look& look, std::span<const AcGePoint3d> points, bool isClosed,
                      PatternRun run) = 0;
    // An area between closed chains.
    enum class Rule : uint8_t { evenOdd, nonZero };
    virtual void area(const Look& look, std::span<const AcGePoint3d> points,
                      std::span<const uint32_t> counts, Rule rule) = 0;
    // An area, filled with an image.
    virtual void image(const Look&, const std::shared_ptr<const ShownImage>&,
                       std::span<const AcGePoint3d>, std::span<const uint32_t>) {}
    // Whether faces hide what is behind them; then shells come as such.
    virtual bool hasDepth() const { return false; }
    // Faces as AcGiGeometry has them, with indexes that are in range. Only where there is depth.
    virtual void shell(const Look&, std::span<const AcGePoint3d>, std::span<const int32_t>) {}
    // A line without an end; `isBoth` for both ends.
    virtual void endless(const Look& look, const AcGePoint3d& base, const AcGeVector3d& direction,
                         bool isBoth) = 0;
};

}  // namespace sg::render
