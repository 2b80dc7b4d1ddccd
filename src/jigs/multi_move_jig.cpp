#include "jigs/multi_move_jig.h"

#include "platform/ed/display.h"

namespace sg {

MultiMoveJig::MultiMoveJig(std::wstring prompt, const AcGePoint3d& basePoint)
    : prompt_(std::move(prompt)),
      currentPoint_(basePoint),
      lastPoint_(basePoint),
      basePoint_(basePoint) {}

bool MultiMoveJig::run() {
    setDispPrompt(prompt_.c_str());
    const DragStatus status = drag();
    if (status == kNull) nullResponse_ = true;
    acedRedraw(nullptr, 0);
    return status != kCancel;
}

AcEdJig::DragStatus MultiMoveJig::sampler() {
    setUserInputControls(kGovernedByOrthoMode | kNullResponseAccepted);
    setSpecialCursorType(kRubberBand);
    const DragStatus status = acquirePoint(currentPoint_, basePoint_);
    return currentPoint_ == lastPoint_ && status == kNormal ? kNoChange : status;
}

// By small steps: nothing is computed from where the entities began.
bool MultiMoveJig::update() {
    const AcGeMatrix3d step = AcGeMatrix3d::translation(currentPoint_ - lastPoint_);
    forEach([&](AcDbEntity& entity) { entity.transformBy(step); });
    lastPoint_ = currentPoint_;
    return true;
}

}  // namespace sg
