#pragma once

#include <optional>
#include <string_view>

#include "base/export.h"
#include "platform/db/filers.h"

namespace sg::dxf {

// A release of drawing files: its year, or number, as people name it, and the text of $ACADVER.
struct Release {
    AcDb::AcDbDwgVersion number;
    std::string_view name, version;
    bool isWritten;  // whether we can write it
};

// Ascending.
SG_API const Release& releaseOf(AcDb::AcDbDwgVersion number);
SG_API const Release* releaseNamed(std::string_view name);
const Release* releaseOfVersion(std::string_view version);
// The release itself when it can be written, else the next one that can.
SG_API const Release& writtenFor(AcDb::AcDbDwgVersion number);

}  // namespace sg::dxf
