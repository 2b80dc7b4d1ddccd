#pragma once

#include "app/arguments.h"

// The commands of the program. Each answers the process's exit code and may throw FileError.
namespace sg::app {

// Runs a program file, then expressions, then saves the drawing when nothing failed.
int run(const Arguments& arguments);

// Reads expressions and commands line by line and runs them: with prompts, editing and the values
// printed from a terminal; from anything else without prompts, and then kLispError tells that one
// of them failed.
int repl(const Arguments& arguments);

// Prints a function's page, the list of all functions, or those that the module lacks.
int help(const Arguments& arguments);

// Writes a drawing as another file, in a release that is asked for.
int convert(const Arguments& arguments);

// Prints what a drawing file holds, and what of it is kept without being understood.
int info(const Arguments& arguments);

// Makes a picture of a drawing.
int render(const Arguments& arguments);

// Shows what is in a database file, runs SQL on it, checks it, adds rows, or writes it anew. Needs
// no host.
int db(const Arguments& arguments);

}  // namespace sg::app
