#pragma once

#include <string>

#include "jigs/multi_jig.h"

namespace sg {

// Drags entities by the way from a base point to another one.
class MultiMoveJig : public MultiJig {
  public:
    MultiMoveJig(std::wstring prompt, const AcGePoint3d& basePoint);

    bool run();  // false when the user cancels
    bool hasNullResponse() const { return nullResponse_; }
    const AcGePoint3d& currentPoint() const { return currentPoint_; }

    DragStatus sampler() override;
    bool update() override;

  private:
    const std::wstring prompt_;
    bool nullResponse_ = false;
    AcGePoint3d currentPoint_;
    AcGePoint3d lastPoint_;  // up to which the entities have been moved
    const AcGePoint3d basePoint_;
};

}  // namespace sg
