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
    ERROR_BUFFER_OVERFLOW = 111,
    ERROR_ALREADY_EXISTS = 183,
    ERROR_MORE_DATA = 234,
    ERROR_NO_MORE_ITEMS = 259,
};

// A named mutex; a second one of the same name is the same mutex, and sets ERROR_ALREADY_EXISTS.
// Mutexes live as long as the host.
struct SgMutex;
SG_API SgMutex* CreateMutexW(const void* attributes, bool owned, const wchar_t* name);

// Lets the thread rest; other programs go on.
SG_API void Sleep(uint32_t milliseconds);

// The machine's name, at most `*size` characters with the final zero; `*size` is then the number
// of characters without it. False, with `*size` what it would take, when the buffer is too small.
SG_API bool GetComputerNameW(wchar_t* name, uint32_t* size);

// The one random generator: a whole number from 0 to 32767. The same seed gives the same numbers.
// This host's own.
SG_API int sgRandom();
SG_API void sgSeedRandom(uint32_t seed);
