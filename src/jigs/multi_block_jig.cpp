#include "jigs/multi_block_jig.h"

#include <memory>

#include "bridge/marshal_builders.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "jigs/world_angle.h"
#include "platform/db/attribute.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/ed/display.h"

namespace sg {
namespace {

// Gives a reference what the definitions of its block ask for.
void addAttributes(AcDbBlockReference& reference) {
    const Opened<AcDbBlockTableRecord> block(reference.blockTableRecord(), AcDb::kForRead);
    if (!block) return;
    const AcGeMatrix3d transform = reference.blockTransform();
    for (auto each = block->newIterator(); !each->done(); each->step()) {
        AcDbEntity* entity = nullptr;
        if (each->getEntity(entity) != Acad::eOk) continue;
        const auto* const definition = AcDbAttributeDefinition::cast(entity);
        if (definition != nullptr && !definition->isConstant()) {
            auto attribute = std::make_unique<AcDbAttribute>();
            attribute->setAttributeFromBlock(definition, transform);
            if (reference.appendAttribute(attribute.get()) == Acad::eOk) {
                attribute.release()->close();
            }
        }
        entity->close();
    }
}

}  // namespace

void multiBlockJig::setBasePoint(const AcGePoint3d& point) {
    samplePoint_ = insertionPoint_ = point;
    hasBasePoint_ = true;
}

bool multiBlockJig::run() {
    stage_ = Stage::point;
    rotation_ = 0;
    if (hasBasePoint_) {
        update();
    } else {
        setDispPrompt(L"\nSpecify insertion point: ");
        if (drag() != kNormal) {
            acedRedraw(nullptr, 0);
            return false;
        }
    }
    if (rotate_ && !askRotation()) return false;
    addReferences();
    acedRedraw(nullptr, 0);
    return true;
}

bool multiBlockJig::askRotation() {
    stage_ = Stage::rotation;
    setDispPrompt(L"\nSpecify rotation angle <0>: ");
    const DragStatus status = drag();
    if (status == kNull) {
        rotation_ = 0;
        update();
        return true;
    }
    if (status == kNormal) return true;
    acedRedraw(nullptr, 0);
    return false;
}

// ---- The drag -----------------------------------------------------------------------------------

AcEdJig::DragStatus multiBlockJig::sampler() {
    setUserInputControls(kNullResponseAccepted);
    return stage_ == Stage::point ? samplePlace() : sampleRotation();
}

AcEdJig::DragStatus multiBlockJig::samplePlace() {
    AcGePoint3d point;
    const DragStatus status = acquirePoint(point);
    if (status == kCancel || status == kNull) return status;
    if (point == insertionPoint_ && status == kNormal) return kNoChange;
    samplePoint_ = insertionPoint_ = point;
    return status;
}

AcEdJig::DragStatus multiBlockJig::sampleRotation() {
    double angle = 0;
    const DragStatus status = acquireAngle(angle, insertionPoint_);
    if (status != kNormal) return status;
    angle = worldAngle(angle);
    if (angle == rotation_) return kNoChange;
    rotation_ = angle;
    return status;
}

bool multiBlockJig::update() {
    const AcGeMatrix3d turn =
        AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis, insertionPoint_);
    forEach<AcDbBlockReference>([&](AcDbBlockReference& reference) {
        if (stage_ == Stage::rotation) {
            reference.setPosition(turn * samplePoint_);
            reference.setRotation(rotation_);
            return;
        }
        // A block with a base point of its own is shown shifted by it during the drag.
        const AcGeMatrix3d shown = reference.blockTransform();
        const AcGePoint3d before = reference.position();
        samplePoint_ = insertionPoint_;
        samplePoint_.x += shown(0, 3) - before.x;
        samplePoint_.y += shown(1, 3) - before.y;
        reference.setPosition(samplePoint_);
    });
    return true;
}

// ---- The end ------------------------------------------------------------------------------------

void multiBlockJig::addReferences() {
    appendToModelSpace();
    forEach<AcDbBlockReference>(addAttributes);
    giveAsResult();
    release();
}

// A reference that cannot be appended is left out without a word.
void multiBlockJig::appendToModelSpace() {
    AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
    const Opened<AcDbBlockTableRecord> space(
        database == nullptr ? AcDbObjectId() : database->modelSpaceId(), AcDb::kForWrite);
    forEach<AcDbBlockReference>([&](AcDbBlockReference& reference) {
        reference.setPosition(insertionPoint_);
        if (space) space->appendAcDbEntity(&reference);
    });
}

void multiBlockJig::giveAsResult() {
    resbuf *head, *tail;
    beginResultList(head, tail);
    forEach([&](AcDbEntity& entity) { appendPair(tail, L"obj", entity.objectId()); });
    finishResultList(head, tail);
}

// The drawing owns what was appended; the rest goes with the jig.
void multiBlockJig::release() {
    AcDbVoidPtrArray left;
    forEach([&](AcDbEntity& entity) {
        if (entity.isPersistent()) {
            entity.close();
        } else {
            left.append(&entity);
        }
    });
    list().entities() = left;
}

}  // namespace sg
