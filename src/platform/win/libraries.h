#pragma once

#include "base/export.h"

// Libraries of the system, and what they offer by name.
struct SgLibrary;
using HMODULE = SgLibrary*;
using FARPROC = void (*)();

// The library of that name, in any case, when it is loaded; else null.
SG_API HMODULE GetModuleHandleW(const wchar_t* name);

// Opens a library that belongs to a module and stands with the host's own, by its file's name; null
// when there is none. It stays open.
SG_API HMODULE LoadLibraryW(const wchar_t* name);

// The function of exactly that name; null when the library has none, as for a null library.
SG_API FARPROC GetProcAddress(HMODULE library, const char* name);

// What a library of this product's own exports under that name; the library stands where the
// product's libraries are, is opened when it is first asked for, and stays open. Null when there is
// no such library, or nothing of that name in it.
SG_API void* sgOwnLibrarySymbol(const char* library, const char* symbol);
