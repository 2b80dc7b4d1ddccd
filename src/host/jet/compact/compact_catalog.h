#pragma once

#include "host/jet/compact/compact_source.h"
#include "host/jet/database/database.h"

namespace sg::jet::compaction {

// Copies everything that the source holds into a new database.
void copyDatabase(const Source& source, Database& into, Run& run);

}  // namespace sg::jet::compaction
