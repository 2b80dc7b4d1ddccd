#pragma once

#include "base/export.h"
#include "platform/db/database.h"
#include "platform/lisp/resbuf.h"

namespace sg::model {

// What programs' lists of groups are held to ahead of being read into an object. Objects of kinds
// that are not known here take any list.

// Whether all groups are there without which an object is not made, under its class's marker where
// there are markers.
SG_API bool hasRequiredGroups(const AcDbObject& object, const resbuf* groups);

// Whether an object may have the values: numbers are finite; an entity has a colour (62) from 0 to
// 256, and above 0 the radius or height (40) of what has one, and a direction (11) where it is
// endless; a layer a linetype (6) of the drawing; both a line weight
// (370) that there is.
SG_API bool hasValidValues(const AcDbObject& object, const resbuf* groups,
                           const AcDbDatabase& database);

}  // namespace sg::model
