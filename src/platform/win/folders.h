#pragma once

#include <cstdint>

#include "base/export.h"
#include "platform/win/window.h"

// The folder for temporary files, with "/" at its end. Answers its length, or, when `capacity`
// characters do not hold it with the final zero, the room that it needs. 0 when there is none.
SG_API uint32_t GetTempPathW(uint32_t capacity, wchar_t* path);

enum : int {
    CSIDL_DESKTOPDIRECTORY = 0x10,
    CSIDL_FLAG_CREATE = 0x8000,  // make the folder when it is not there
};
enum : int32_t { S_OK = 0 };
inline constexpr uint32_t MAX_PATH = 260;

// Writes one of the user's folders, without "/" at its end, into `path`, which has room for
// MAX_PATH characters. S_OK; any other answer is a failure, as for a folder that is not there, and
// leaves an empty text.
SG_API int32_t SHGetFolderPathW(HWND owner, int folder, void* token, uint32_t flags, wchar_t* path);
