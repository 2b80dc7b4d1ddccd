#pragma once

#include "base/export.h"
#include "platform/db/object_id.h"

class AcDbEntity;

// Walks the entities that belong to another one, the attributes of a block reference or the
// vertices of a polyline, in their order; erased ones are left out.
class SG_API AcDbObjectIterator {
  public:
    virtual ~AcDbObjectIterator() = default;
    virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
    virtual bool done() const = 0;
    virtual AcDbObjectId objectId() const = 0;
    // What has no id yet, because its owner is in no database; null for what is to be opened.
    virtual AcDbEntity* entity() const { return nullptr; }
    virtual void step(bool backwards = false, bool skipErased = true) = 0;
};
