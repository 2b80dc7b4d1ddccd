#pragma once

#include <span>

#include "host/lisp/interpreter.h"

// The functions of the language, one table a family.
namespace sg::lisp {

std::span<const FunctionRow> controlFunctions();     // evaluation, errors, symbols, namespaces
std::span<const FunctionRow> arithmeticFunctions();  // numbers, comparison, bits
std::span<const FunctionRow> listFunctions();        // lists and association lists
std::span<const FunctionRow> sequenceFunctions();    // mapcar and the functions that take functions
std::span<const FunctionRow> stringFunctions();      // strings and characters
std::span<const FunctionRow> conversionFunctions();  // rtos and its kin, geometry
std::span<const FunctionRow> streamFunctions();      // printing, files read and written
std::span<const FunctionRow> fileFunctions();        // names, folders, copies
std::span<const FunctionRow> programFunctions();     // load, autoload

// Defines them all.
void defineLanguage(Interpreter& in);

}  // namespace sg::lisp
