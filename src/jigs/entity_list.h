#pragma once

#include "platform/db/entity.h"
#include "platform/rx/array.h"

namespace sg {

// Stands in for many entities where only one can be dragged. It is never in a database, owns none
// of its entities and has no extents.
class entityList : public AcDbEntity {
  public:
    // eInvalidInput for an empty array. The entities, or null, must live as long as they are drawn.
    Acad::ErrorStatus setEntityList(const AcDbVoidPtrArray& entities);
    bool isSet() const { return isSet_; }  // setEntityList() has been called
    AcDbVoidPtrArray& entities() { return entities_; }

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;

  private:
    bool isSet_ = false;
    AcDbVoidPtrArray entities_{0, 8};
};

}  // namespace sg
