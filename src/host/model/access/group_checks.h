#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

namespace sg::model {

// What programs' lists of groups are held to ahead of being read. A list is told apart by its group
// 0; kinds that are not known here pass.

// Whether all groups are there without which an object is not made.
SG_API bool hasRequiredGroups(const resbuf* groups);

// Whether an entity may have the values: a colour (62) from 0 to 256, and above 0 the radius or
// height (40) of what has one.
SG_API bool hasValidValues(const resbuf* groups);

}  // namespace sg::model
