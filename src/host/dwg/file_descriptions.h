#pragma once

#include "host/dwg/file_content.h"
#include "host/model/core/database_state.h"

namespace sg::dwg {

// The sections of a file that tell of the file itself, each for the release.

// Which program's file it is, how often it was saved, and when.
Bytes auxiliaryHeader(const model::DatabaseState& state, AcDb::AcDbDwgVersion release,
                      uint64_t seed);
// Title, subject, author and the like, all empty, and the times.
Bytes emptySummary(const model::DatabaseState& state, AcDb::AcDbDwgVersion release);
// What wrote the file.
Bytes applicationInfo(AcDb::AcDbDwgVersion release);

}  // namespace sg::dwg
