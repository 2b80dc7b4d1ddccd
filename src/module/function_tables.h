#pragma once

#include <span>

#include "bridge/function_table.h"

// The module's two tables of LISP functions.
namespace sg {

// The project database functions, numbered from 0.
std::span<const FunctionRow> sgFunctions();

// The drawing, dialog and support functions, numbered from where the sg_ table ends.
std::span<const FunctionRow> qnFunctions();

inline constexpr int kSgBase = 0;
inline int qnBase() {
    return static_cast<int>(sgFunctions().size());
}

}  // namespace sg
