#include "jigs/entity_list.h"

#include "jigs/block_contents.h"
#include "platform/db/block_reference.h"
#include "platform/gi/draw.h"

namespace sg {

Acad::ErrorStatus entityList::setEntityList(const AcDbVoidPtrArray& entities) {
    isSet_ = true;
    if (&entities != &entities_) entities_ = entities;
    return entities_.isEmpty() ? Acad::eInvalidInput : Acad::eOk;
}

bool entityList::subWorldDraw(AcGiWorldDraw* draw) {
    for (void* const each : entities_) {
        auto* const entity = static_cast<AcDbEntity*>(each);
        if (entity == nullptr) continue;
        if (const auto* const reference = AcDbBlockReference::cast(entity)) {
            drawBlockContents(*reference, *draw, entity);
        } else {
            draw->geometry().draw(entity);
        }
    }
    return true;
}

}  // namespace sg
