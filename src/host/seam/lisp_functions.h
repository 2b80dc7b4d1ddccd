#pragma once

#include <span>

#include "host/lisp/interpreter.h"

namespace sg {

// LISP functions that work on the host: messages, modules, drawings; system variables and the
// registry; entities; tables, dictionaries and coordinate systems of the current drawing; selection
// sets; prompts; commands.
std::span<const lisp::FunctionRow> hostFunctions();
std::span<const lisp::FunctionRow> settingsFunctions();
std::span<const lisp::FunctionRow> entityFunctions();
std::span<const lisp::FunctionRow> tableFunctions();
std::span<const lisp::FunctionRow> selectionFunctions();
std::span<const lisp::FunctionRow> promptFunctions();
std::span<const lisp::FunctionRow> commandFunctions();

}  // namespace sg
