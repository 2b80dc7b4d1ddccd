#pragma once

#include "host/editor/system_variables.h"

class AcDbDatabase;

namespace sg {

// Makes the header variables of a drawing the system variables of the same names: they are read
// from and kept in the database, which must live as long as the set. Objects and colours show as
// their names.
void joinDrawingVariables(SystemVariables& variables, AcDbDatabase& database);

}  // namespace sg
