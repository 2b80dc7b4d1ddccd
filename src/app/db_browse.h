#pragma once

#include "app/arguments.h"

namespace sg::app {

// Shows a table in a window until that is closed. Answers the exit code: kWrongUsage where there is
// no display to show it on and no file to write instead. Throws jet::Error and UnknownTable.
int browse(const DatabaseArguments& arguments);

}  // namespace sg::app
