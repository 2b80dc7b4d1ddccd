#include "companion/exact_shapes.h"

#include "companion/hvac_solid.h"

namespace sg::companion {
namespace {

class ExactShapes final : public sgExactShapePE {
  public:
    bool exactShape(const AcDbEntity* entity, std::string& shape) override {
        const auto* const solid = HvacSolid::cast(entity);
        if (solid == nullptr) return false;
        const ShapePtr bodies = solid->shape();
        return bodies != nullptr && solidKernel()->exact(*bodies, shape);
    }
};

}  // namespace

sgExactShapePE* exactShapes() {
    static ExactShapes extension;
    return &extension;
}

}  // namespace sg::companion
