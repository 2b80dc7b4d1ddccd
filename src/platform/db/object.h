#pragma once

#include "base/export.h"
#include "platform/db/object_id.h"
#include "platform/rx/rxobject.h"

// What can live in a drawing database.
class SG_API AcDbObject : public AcRxObject {
  public:
    // The id under which the database keeps the object; the null id until it is in a database.
    virtual AcDbObjectId objectId() const = 0;
};
