#pragma once

#include "base/export.h"

class AcDbDatabase;

namespace sg::model {

// Fills an empty database with what every drawing has: tables with their fixed records, the spaces
// and their layouts, the dictionaries, and the header variables that name them.
SG_API void buildDefaultDrawing(AcDbDatabase& database);

}  // namespace sg::model
