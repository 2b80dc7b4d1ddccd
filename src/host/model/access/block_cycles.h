#pragma once

#include "base/export.h"
#include "platform/db/object_id.h"

namespace sg::model {

// Whether a block is the other one or shows it, by a reference of its own or through the blocks
// that it shows. A reference to such a block may not stand in the other one.
SG_API bool showsBlock(AcDbObjectId block, AcDbObjectId other);

}  // namespace sg::model
