#pragma once

#include <span>

#include "host/lisp/interpreter.h"

namespace sg {

// LISP functions that work on the host: messages, modules, drawings; system variables and the
// registry; entities; curves; tables, dictionaries and coordinate systems of the current drawing;
// selection sets; prompts; input devices, display and file choosers; commands; database files and
// colours for programs that dialogs call.
std::span<const lisp::FunctionRow> hostFunctions();
std::span<const lisp::FunctionRow> settingsFunctions();
std::span<const lisp::FunctionRow> entityFunctions();
std::span<const lisp::FunctionRow> curveFunctions();
std::span<const lisp::FunctionRow> tableFunctions();
std::span<const lisp::FunctionRow> selectionFunctions();
std::span<const lisp::FunctionRow> promptFunctions();
std::span<const lisp::FunctionRow> inputFunctions();
std::span<const lisp::FunctionRow> commandFunctions();
std::span<const lisp::FunctionRow> dialogSupportFunctions();

}  // namespace sg
