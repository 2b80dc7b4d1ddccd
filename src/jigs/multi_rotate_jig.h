#pragma once

#include <string>

#include "jigs/multi_jig.h"

namespace sg {

// Turns entities about a base point.
class MultiRotateJig : public MultiJig {
  public:
    MultiRotateJig(std::wstring prompt, const AcGePoint3d& basePoint);

    bool run();  // false when the user cancels
    bool hasNullResponse() const { return nullResponse_; }
    double currentAngle() const { return currentAngle_; }

    DragStatus sampler() override;
    bool update() override;

  private:
    const std::wstring prompt_;
    bool nullResponse_ = false;
    double currentAngle_ = 0;
    double lastAngle_ = 0;  // up to which the entities have been turned
    const AcGePoint3d basePoint_;
};

}  // namespace sg
