#pragma once

#include "platform/db/object_id.h"

namespace sg::model {

// Hears which objects of a database change, so that what was derived from them can follow.
class ChangeListener {
  public:
    virtual ~ChangeListener() = default;

    // The object is new, erased, brought back, gone, of another class, in another place of its
    // owner, or about to change; by programs or by undo. Of the changes within one open for write
    // the first is told.
    virtual void objectChanges(AcDbObjectId id) = 0;
};

}  // namespace sg::model
