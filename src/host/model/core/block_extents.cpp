#include "host/model/core/block_extents.h"

#include "host/model/core/object_access.h"
#include "platform/db/block_table.h"
#include "platform/db/entity.h"

namespace sg::model {

AcDbExtents extentsOfBlock(AcDbObjectId block) {
    AcDbExtents whole;
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    if (record == nullptr) return whole;
    for (const AcDbObjectId id : record->entityIds()) {
        const auto* const entity = peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) continue;
        const Unguarded guard(*entity);
        AcDbExtents extents;
        if (entity->getGeomExtents(extents) == Acad::eOk) whole.addExt(extents);
    }
    return whole;
}

}  // namespace sg::model
