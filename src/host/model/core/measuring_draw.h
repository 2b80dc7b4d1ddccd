#pragma once

#include <memory>
#include <unordered_map>

#include "platform/db/extents.h"
#include "platform/db/object_id.h"
#include "platform/gi/draw.h"

namespace sg::model {

class PlainTraits;

// A drawing that keeps only how far what is drawn reaches. Rays and construction lines reach
// nowhere.
//
// Blocks within blocks may hold more than can be looked at one by one. Beyond a hundred thousand
// objects the drawing is in haste, and whoever draws a block adds the box around it instead: exact
// unless it is turned, and then at most too large.
class SG_API MeasuringDraw final : public AcGiWorldDraw {
  public:
    // The boxes of blocks, each in the block's own coordinates.
    using BlockBoxes = std::unordered_map<AcDbObjectId, AcDbExtents>;

    MeasuringDraw();
    // In haste from the start, with boxes that are known already.
    explicit MeasuringDraw(std::shared_ptr<BlockBoxes> boxes);
    ~MeasuringDraw() override;

    const AcDbExtents& extents() const;
    bool isInHaste() const;
    const std::shared_ptr<BlockBoxes>& blockBoxes() const { return boxes_; }
    void addBox(const AcDbExtents& box, const AcGeMatrix3d& transform);

    AcGiRegenType regenType() const override { return kAcGiForExtents; }
    bool regenAbort() const override { return false; }
    bool isDragging() const override { return false; }
    double deviation(const AcGePoint3d& near) const override;
    AcGiGeometry& geometry() const override;
    AcGiSubEntityTraits& subEntityTraits() const override;

  private:
    class Geometry;

    std::unique_ptr<Geometry> geometry_;
    std::unique_ptr<PlainTraits> traits_;
    std::shared_ptr<BlockBoxes> boxes_;
};

}  // namespace sg::model
