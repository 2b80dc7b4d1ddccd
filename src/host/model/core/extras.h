#pragma once

#include <cstdint>
#include <vector>

#include "host/model/core/group_data.h"
#include "platform/db/object_id.h"

namespace sg::model {

// What few objects have.
struct Extras {
    ExtendedData extendedData;
    AcDbHardOwnershipId extensionDictionary;
    AcDbObjectIdArray reactors;
    GroupData unknownGroups;  // of a drawing file, not understood and kept
    AcDbHardPointerId plotStyle;
    AcDbHardPointerId material;
    uint32_t transparency = 0;
};

}  // namespace sg::model
