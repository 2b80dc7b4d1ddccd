#pragma once

#include <cstdint>

#include "base/export.h"

// The last error that a call of the system left, and setting it. 0 means none.
SG_API uint32_t GetLastError();
SG_API void SetLastError(uint32_t code);

enum : uint32_t { ERROR_ALREADY_EXISTS = 183 };

// A named mutex; a second one of the same name is the same mutex, and sets ERROR_ALREADY_EXISTS.
// Mutexes live as long as the host.
struct SgMutex;
SG_API SgMutex* CreateMutexW(const void* attributes, bool owned, const wchar_t* name);
