#include "jigs/rotate_jig.h"

#include "drawing/call_arguments.h"
#include "platform/db/block_reference.h"
#include "platform/db/mtext.h"
#include "platform/ed/display.h"

namespace sg {
namespace {

// The entity as one of exactly this class; null for others, and for classes derived from it.
template <class Class>
Class* exactly(AcDbEntity* entity) {
    return entity != nullptr && entity->isA() == Class::desc() ? static_cast<Class*>(entity)
                                                               : nullptr;
}

AcGePoint3d basePointOf(AcDbEntity& entity) {
    if (const auto* const text = exactly<AcDbMText>(&entity)) return text->location();
    if (const auto* const reference = exactly<AcDbBlockReference>(&entity)) {
        return reference->position();
    }
    AcDbExtents extents;
    return entity.getGeomExtents(extents) == Acad::eOk ? extents.minPoint() : AcGePoint3d();
}

}  // namespace

RotateJig::RotateJig(AcDbObjectId entity, std::wstring prompt) : prompt_(std::move(prompt)) {
    const Opened<AcDbEntity> opened(entity, AcDb::kForRead);
    if (!opened) return;
    clone_.reset(AcDbEntity::cast(opened->clone()));
    basePoint_ = basePointOf(*opened);
}

bool RotateJig::run() {
    setDispPrompt(prompt_.c_str());
    const DragStatus status = drag();
    if (status == kCancel) {
        acedRedraw(nullptr, 0);
        return false;
    }
    if (status == kNull) nullResponse_ = true;
    return true;
}

AcEdJig::DragStatus RotateJig::sampler() {
    setUserInputControls(kGovernedByOrthoMode | kNullResponseAccepted);
    return acquireAngle(angle_, basePoint_);
}

bool RotateJig::update() {
    if (auto* const text = exactly<AcDbMText>(clone_.get())) text->setRotation(angle_);
    if (auto* const reference = exactly<AcDbBlockReference>(clone_.get())) {
        reference->setRotation(angle_);
    }
    return true;
}

}  // namespace sg
