#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/model/core/group_data.h"
#include "platform/db/object_id.h"

namespace sg::model {

// An object as a drawing file had it, kept where its class would write it with other groups, or in
// another order. While the object is as it was read it is written so again.
struct FileForm {
    GroupData groups;  // all of them, from the group 0 on
    // Those that its class does not know, behind the marker (100) of the subclass that has them.
    GroupData unknown;
    uint64_t fingerprint = 0;  // of what its class writes while the object is as it was read
    int16_t release = 0;       // of the file (AcDb::AcDbDwgVersion)
};

// What few objects have.
struct Extras {
    ExtendedData extendedData;
    AcDbHardOwnershipId extensionDictionary;
    AcDbObjectIdArray reactors;
    GroupData unknownLists;  // of other applications, each from its 102 to the closing brace
    std::unique_ptr<FileForm> fileForm;
    AcDbHardPointerId plotStyle;
    AcDbHardPointerId material;
    uint32_t transparency = 0;
};

}  // namespace sg::model
