#pragma once

#include "app/arguments.h"

namespace sg::app {

// Runs SQL statements one after another, each as a transaction of its own, and prints what they
// give: tables on a terminal, else comma-separated values. The first that fails ends it. Answers
// the exit code; throws FileError, and jet::Error when the database cannot be opened.
int runStatements(const DatabaseArguments& arguments);

}  // namespace sg::app
