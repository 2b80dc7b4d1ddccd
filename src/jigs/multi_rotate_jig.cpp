#include "jigs/multi_rotate_jig.h"

#include "platform/ed/display.h"

namespace sg {

MultiRotateJig::MultiRotateJig(std::wstring prompt, const AcGePoint3d& basePoint)
    : prompt_(std::move(prompt)), basePoint_(basePoint) {}

bool MultiRotateJig::run() {
    setDispPrompt(prompt_.c_str());
    const DragStatus status = drag();
    if (status == kNull) nullResponse_ = true;
    acedRedraw(nullptr, 0);
    return status != kCancel;
}

AcEdJig::DragStatus MultiRotateJig::sampler() {
    setUserInputControls(kGovernedByOrthoMode | kNullResponseAccepted);
    lastAngle_ = currentAngle_;
    return acquireAngle(currentAngle_, basePoint_);
}

bool MultiRotateJig::update() {
    const AcGeMatrix3d step =
        AcGeMatrix3d::rotation(currentAngle_ - lastAngle_, AcGeVector3d::kZAxis, basePoint_);
    forEach([&](AcDbEntity& entity) { entity.transformBy(step); });
    return true;
}

}  // namespace sg
