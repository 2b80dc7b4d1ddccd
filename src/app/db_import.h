#pragma once

#include "app/arguments.h"

namespace sg::app {

// Adds the rows of a file of comma-separated values to a table, in one transaction. Answers the
// exit code. Throws UnknownTable, jet::Error, and FileError, also for what is wrong in the file,
// with file and line; nothing was changed then.
int importTable(const DatabaseArguments& arguments);

}  // namespace sg::app
