#pragma once

#include <span>

#include "host/lisp/interpreter.h"

namespace sg {

// LISP functions that work on the host: messages, modules, drawings; system variables and the
// registry.
std::span<const lisp::FunctionRow> hostFunctions();
std::span<const lisp::FunctionRow> settingsFunctions();

}  // namespace sg
