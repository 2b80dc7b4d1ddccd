#pragma once

#include <cstdint>

#include "base/export.h"

// The last error that a call of the system left, and setting it. 0 means none.
SG_API uint32_t GetLastError();
SG_API void SetLastError(uint32_t code);

enum : uint32_t {
    ERROR_SUCCESS = 0,
    ERROR_INVALID_FUNCTION = 1,
    ERROR_FILE_NOT_FOUND = 2,
    ERROR_PATH_NOT_FOUND = 3,
    ERROR_ACCESS_DENIED = 5,
    ERROR_INVALID_HANDLE = 6,
    ERROR_INVALID_DATA = 13,
    ERROR_NO_MORE_FILES = 18,
    ERROR_INVALID_PARAMETER = 87,
    ERROR_ALREADY_EXISTS = 183,
    ERROR_MORE_DATA = 234,
};

// A named mutex; a second one of the same name is the same mutex, and sets ERROR_ALREADY_EXISTS.
// Mutexes live as long as the host.
struct SgMutex;
SG_API SgMutex* CreateMutexW(const void* attributes, bool owned, const wchar_t* name);
