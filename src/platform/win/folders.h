#pragma once

#include <cstdint>

#include "base/export.h"
#include "platform/win/files.h"
#include "platform/win/hresult.h"
#include "platform/win/window.h"

// Folders, and what the files in them are.

inline constexpr uint32_t MAX_PATH = 260;

// The folder for temporary files, with "/" at its end. Answers its length, or, when `capacity`
// characters do not hold it with the final zero, the room that it needs. 0 when there is none.
SG_API uint32_t GetTempPathW(uint32_t capacity, wchar_t* path);

enum : int {
    CSIDL_DESKTOPDIRECTORY = 0x10,
    CSIDL_FLAG_CREATE = 0x8000,  // make the folder when it is not there
};

// Writes one of the user's folders, without "/" at its end, into `path`, which has room for
// MAX_PATH characters. S_OK; any other answer is a failure, as for a folder that is not there, and
// leaves an empty text.
SG_API int32_t SHGetFolderPathW(HWND owner, int folder, void* token, uint32_t flags, wchar_t* path);

enum : uint32_t {
    FILE_ATTRIBUTE_READONLY = 0x1,
    INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF,
};

// What a file or folder is; INVALID_FILE_ATTRIBUTES when there is none of that name.
SG_API uint32_t GetFileAttributesW(const wchar_t* path);

// Makes one folder, whose parent must exist. False, and GetLastError() tells why, when it cannot be
// made or is there already.
SG_API bool CreateDirectoryW(const wchar_t* path, const void* security);
// Removes an empty folder. False, and GetLastError() tells why, when it cannot be.
SG_API bool RemoveDirectoryW(const wchar_t* path);
