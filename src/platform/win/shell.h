#pragma once

#include <cstdint>

#include "base/export.h"
#include "platform/win/window.h"

enum : int { SW_SHOWNORMAL = 1, SW_SHOWNA = 8 };

// Opens a document, a folder or an address with the program that is responsible for it, or starts a
// program. `operation` is "open" in any case, or null. A success is above 32; 2 means that the file
// was not found, 31 that no program is responsible.
SG_API intptr_t ShellExecuteW(HWND owner, const wchar_t* operation, const wchar_t* file,
                              const wchar_t* parameters, const wchar_t* directory, int show);
