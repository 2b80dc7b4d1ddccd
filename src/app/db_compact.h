#pragma once

#include "app/arguments.h"

namespace sg::app {

// Writes a database anew, into another file or in its own place. Answers the exit code: kFindings
// when not everything could be saved. Throws FileError and jet::Error, and then nothing was
// changed.
int compact(const DatabaseArguments& arguments);

}  // namespace sg::app
