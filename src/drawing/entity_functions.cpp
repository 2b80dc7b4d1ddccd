#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/db/annotative.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table.h"
#include "platform/db/face.h"

namespace sg {
namespace {

// An entity or another object and the flag behind it. A missing flag is false.
bool nextObjectAndFlag(const resbuf*& position, AcDbObjectId& id, bool& flag) {
    flag = false;
    return nextObjectId(position, id) && (position == nullptr || nextBool(position, flag));
}

// What makes an object of this class annotative; null when it cannot be.
AcDbAnnotativeObjectPE* annotativeOf(const AcDbObject& object) {
    return static_cast<AcDbAnnotativeObjectPE*>(object.queryX(AcDbAnnotativeObjectPE::desc()));
}

}  // namespace

int entitySetColor() {
    CallArguments arguments;
    AcDbObjectId id;
    int32_t index = 0;
    if (!nextObjectId(arguments.next, id) || !nextInt(arguments.next, index)) return kLispWrongType;
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) return kLispOk;
    AcCmColor color;
    color.setColorIndex(static_cast<uint16_t>(index));
    entity->setColor(color, true);
    return kLispOk;
}

int entityGetGeomExtents() {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    acedRetNil();
    const Opened<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbExtents extents;
    if (!entity || entity->getGeomExtents(extents) != Acad::eOk) return kLispOk;
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    beginResultList(head, tail);
    appendPair(tail, L"min", extents.minPoint());
    appendPair(tail, L"max", extents.maxPoint());
    finishResultList(head, tail);
    return kLispOk;
}

int faceMakeEdgeInvisibleAt() {
    CallArguments arguments;
    AcDbObjectId id;
    int32_t index = 0;
    if (!nextObjectId(arguments.next, id) || !nextInt(arguments.next, index)) return kLispWrongType;
    acedRetNil();
    const Opened<AcDbFace> face(id, AcDb::kForWrite);
    if (!face) return kLispOk;
    face->makeEdgeInvisibleAt(static_cast<uint16_t>(index));
    acedRetT();
    return kLispOk;
}

int setAnnotative() {
    CallArguments arguments;
    AcDbObjectId id;
    bool flag = false;
    if (!nextObjectAndFlag(arguments.next, id, flag)) return kLispWrongType;
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) return kLispOk;
    if (AcDbAnnotativeObjectPE* const extension = annotativeOf(*entity)) {
        extension->setAnnotative(entity.get(), flag);
    }
    return kLispOk;
}

int setAnnotativeBlock() {
    CallArguments arguments;
    AcDbObjectId id;
    bool flag = false;
    if (!nextObjectAndFlag(arguments.next, id, flag)) return kLispWrongType;
    const Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity) return kLispBadData;
    const AcDbBlockReference* const reference = AcDbBlockReference::cast(entity.get());
    if (reference == nullptr) return kLispOk;
    const Opened<AcDbBlockTableRecord> record(reference->blockTableRecord(), AcDb::kForRead);
    if (!record) return kLispOk;
    AcDbAnnotativeObjectPE* const extension = annotativeOf(*record);
    if (extension != nullptr && record->upgradeOpen() == Acad::eOk) {
        extension->setAnnotative(record.get(), flag);
    }
    return kLispOk;
}

}  // namespace sg
