#pragma once

#include "base/export.h"

// Libraries of the host that are opened when something first needs them.
namespace sg {

// Opens a library that stands beside the host's own, or in lib/ beside or above the folder
// of a program that holds the host itself, and answers its handle, as dlopen does; null when there
// is no such library. It stays open.
SG_API void* openCompanion(const char* library);

// The symbol of such a library; null when there is no such library or symbol.
SG_API void* companionSymbol(const char* library, const char* symbol);

}  // namespace sg
