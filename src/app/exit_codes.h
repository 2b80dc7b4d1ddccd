#pragma once

namespace sg::app {

// What the process answers to the shell.
enum ExitCode : int {
    kDone = 0,
    kLispError = 1,   // the program ended in a LISP error
    kFindings = 1,    // a database is not sound, or not all of it could be saved
    kWrongUsage = 2,  // options that are unknown, missing or wrong; an unknown function or table
    kFileError = 3,   // a file could not be read or written
};

}  // namespace sg::app
