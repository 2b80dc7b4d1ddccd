#pragma once

#include "base/export.h"

class AcDbDatabase;

namespace sg::model {

// Fills an empty database with what every drawing has: tables with their fixed records, the spaces
// and their layouts, the dictionaries, and the header variables that name them.
SG_API void buildDefaultDrawing(AcDbDatabase& database);

// What of it is missing in a drawing that comes from a file: first the tables and records, when
// those that the file has are read, then the dictionaries and layouts, when everything is.
SG_API void completeTables(AcDbDatabase& database);
SG_API void completeDictionaries(AcDbDatabase& database);

}  // namespace sg::model
