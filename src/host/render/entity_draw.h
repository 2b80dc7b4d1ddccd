#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/render/canvas.h"
#include "platform/gi/draw.h"

class AcDbBlockTableRecord;

namespace sg::render {

// What the drawing's header says about how things show.
struct DisplaySettings {
    bool fills = true;           // FILLMODE
    bool attributes = true;      // ATTMODE is not 0
    int pointMode = 0;           // PDMODE
    double pointSize = 0;        // PDSIZE
    uint32_t ground = 0xFFFFFF;  // 0xRRGGBB
    double viewHeight = 1;       // of the view, in drawing units: what relative points are sized by
    bool isDragging = false;     // what is drawn follows the pointer
    bool imageFrames = true;     // whether images show theirs around their pixels
    bool wipeoutFrames = true;
    ImageFiles* images = nullptr;  // null: images show as their frames

    static SG_API DisplaySettings of(const AcDbDatabase& database);
};

// How many entities of each kind could not be drawn, by the names that drawing files have for them.
using Undrawn = std::map<std::wstring, size_t>;

// Draws entities on a canvas: what they draw themselves, each with its own properties, resolved
// through the blocks that it stands in.
class SG_API EntityDraw final : public AcGiWorldDraw {
  public:
    EntityDraw(Canvas& canvas, Looks& looks, const DisplaySettings& settings);
    ~EntityDraw() override;

    // What shows of a block in its draw order. `except` is left out.
    void drawSpace(AcDbObjectId block, const std::vector<AcDbObjectId>& except = {});

    const Undrawn& undrawn() const;
    // How many block references were too many to be drawn, and show as boxes.
    size_t boxed() const;

    AcGiRegenType regenType() const override {
        return canvas_.isMeasuring() ? kAcGiForExtents
               : canvas_.hasDepth()  ? kAcGiShadedDisplay
                                     : kAcGiStandardDisplay;
    }
    bool regenAbort() const override { return false; }
    bool isDragging() const override { return isDragging_; }
    double deviation(const AcGePoint3d& near) const override;
    AcGiGeometry& geometry() const override;
    AcGiSubEntityTraits& subEntityTraits() const override;

  private:
    class Geometry;
    class Traits;

    Canvas& canvas_;
    std::unique_ptr<Traits> traits_;
    std::unique_ptr<Geometry> geometry_;
    const bool isDragging_;
};

}  // namespace sg::render
