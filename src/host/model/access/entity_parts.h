#pragma once

#include "base/export.h"
#include "platform/db/entity.h"

namespace sg::model {

// The parts of an entity are the entities that it owns, in their order: the vertices of a polyline
// or the attributes of a block reference, and the sequence end behind them. Erased ones are left
// out.

// Whether an entity of this class may be a part of the whole, the sequence end left aside.
bool isPartOf(const AcRxClass* type, const AcDbEntity& whole);

// Null for an entity without parts.
SG_API AcDbObjectId firstPart(const AcDbEntity& whole);
// Null behind the last one, and for what is no part of it.
SG_API AcDbObjectId partAfter(const AcDbEntity& whole, AcDbObjectId part);

}  // namespace sg::model
