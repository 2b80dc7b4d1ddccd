#pragma once

#include "base/export.h"

// Libraries of the host that are opened when something first needs them.
namespace sg {

// The symbol of a library that stands beside the host's own, or in lib/ beside or above the folder
// of a program that holds the host itself. Null when there is no such library or symbol. The
// library stays open.
SG_API void* companionSymbol(const char* library, const char* symbol);

}  // namespace sg
