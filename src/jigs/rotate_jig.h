#pragma once

#include <memory>
#include <string>

#include "platform/db/entity.h"
#include "platform/ed/jig.h"

namespace sg {

// Asks for the angle of an entity, of which a copy follows the pointer where it is a text of
// several lines or a block reference.
class RotateJig : public AcEdJig {
  public:
    // An entity that cannot be opened shows nothing and is turned about the origin.
    RotateJig(AcDbObjectId entity, std::wstring prompt);

    bool run();  // false when the user cancels
    bool hasNullResponse() const { return nullResponse_; }
    double angle() const { return angle_; }  // from the x axis of the user coordinate system

    DragStatus sampler() override;
    bool update() override;
    AcDbEntity* entity() const override { return clone_.get(); }

  private:
    const std::wstring prompt_;
    std::unique_ptr<AcDbEntity> clone_;
    AcGePoint3d basePoint_;
    double angle_ = 0;
    bool nullResponse_ = false;
};

}  // namespace sg
