#pragma once

#include "app/arguments.h"

namespace sg::app {

// Writes one table, or every table that users see, as CSV. Answers the exit code; throws
// UnknownTable, FileError, and jet::Error when the database cannot be opened.
int exportTables(const DatabaseArguments& arguments);

}  // namespace sg::app
