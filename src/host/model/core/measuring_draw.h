#pragma once

#include <memory>

#include "platform/db/extents.h"
#include "platform/gi/draw.h"

namespace sg::model {

// A drawing that keeps only how far what is drawn reaches. Rays and construction lines reach
// nowhere.
class SG_API MeasuringDraw final : public AcGiWorldDraw {
  public:
    MeasuringDraw();
    ~MeasuringDraw() override;

    const AcDbExtents& extents() const;

    AcGiRegenType regenType() const override { return kAcGiForExtents; }
    bool regenAbort() const override { return false; }
    bool isDragging() const override { return false; }
    double deviation(const AcGePoint3d& near) const override;
    AcGiGeometry& geometry() const override;
    AcGiSubEntityTraits& subEntityTraits() const override;

  private:
    class Geometry;
    class Traits;

    std::unique_ptr<Geometry> geometry_;
    std::unique_ptr<Traits> traits_;
};

}  // namespace sg::model
