#pragma once

#include "platform/db/entity.h"
#include "platform/ge/matrix3d.h"

namespace sg::commands {

// How an entity moves when it is mirrored and stays readable: a text comes to where its mirror
// image would be, turned over there, so that it reads from the left or from below. The mirroring
// itself for what is no text.
AcGeMatrix3d readableMirroring(const AcDbEntity& entity, const AcGeMatrix3d& mirroring);

}  // namespace sg::commands
