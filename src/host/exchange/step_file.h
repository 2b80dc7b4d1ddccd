#pragma once

#include <map>
#include <string>

#include "base/export.h"
#include "platform/db/database.h"

namespace sg::exchange {

// True for a name that ends as those of STEP files do.
SG_API bool isStepName(const std::wstring& path);

struct StepResult {
    size_t solids = 0;
    std::map<std::wstring, size_t> left;  // what has no exact shape, by its names in files
};

// Writes what of the model has an exact shape, also within blocks: each with its name (that of its
// class in files, and its handle), its layer and its colour, in the drawing's unit (INSUNITS;
// millimetres for a drawing without one). An old file stays until the new one is whole. Throws
// FileError, also when there is nothing to write.
SG_API StepResult writeStepFile(const AcDbDatabase& database, const std::wstring& path);

}  // namespace sg::exchange
