#pragma once

#include "base/export.h"
#include "platform/db/object.h"
#include "platform/lisp/resbuf.h"

namespace sg::model {

// Changes an object, which is open for write, to what a list of groups says, as entmod does: what
// the list leaves out stays. False for a list that does not fit the object or the drawing; the
// caller then cancels the object.
SG_API bool changeObject(AcDbObject& object, const resbuf* groups);

}  // namespace sg::model
