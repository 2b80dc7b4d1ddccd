#pragma once

#include "base/export.h"
#include "platform/db/extents.h"
#include "platform/db/object_id.h"

namespace sg::model {

// The box around what a block holds, whether it shows or not; empty where nothing has an extent.
SG_API AcDbExtents extentsOfBlock(AcDbObjectId block);

}  // namespace sg::model
