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
    CSIDL_DESKTOP = 0x0,
    CSIDL_PERSONAL = 0x5,
    CSIDL_DESKTOPDIRECTORY = 0x10,
    CSIDL_APPDATA = 0x1A,
    CSIDL_LOCAL_APPDATA = 0x1C,
    CSIDL_INTERNET_CACHE = 0x20,
    CSIDL_COOKIES = 0x21,
    CSIDL_HISTORY = 0x22,
    CSIDL_COMMON_APPDATA = 0x23,
    CSIDL_WINDOWS = 0x24,
    CSIDL_SYSTEM = 0x25,
    CSIDL_PROGRAM_FILES = 0x26,
    CSIDL_MYPICTURES = 0x27,
    CSIDL_PROGRAM_FILES_COMMON = 0x2B,
    CSIDL_COMMON_DOCUMENTS = 0x2E,
    CSIDL_COMMON_ADMINTOOLS = 0x2F,
    CSIDL_ADMINTOOLS = 0x30,
    CSIDL_FLAG_CREATE = 0x8000,  // make the folder when it is not there
};

// Writes one of the system's or the user's folders, without "/" at its end, into `path`, which has
// room for MAX_PATH characters. docs/folders.md tells what each number stands for. S_OK; any other
// answer is a failure, as for a folder that is not there, and leaves an empty text.
SG_API int32_t SHGetFolderPathW(HWND owner, int folder, void* token, uint32_t flags, wchar_t* path);

enum : uint32_t {
    FILE_ATTRIBUTE_READONLY = 0x1,
    INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF,
};

// What a file or folder is; INVALID_FILE_ATTRIBUTES when there is none of that name.
SG_API uint32_t GetFileAttributesW(const wchar_t* path);

// True for a path on another machine: in a file system that is mounted from there, or one that
// begins with two separators and a name, unless such a file exists here. The path itself need not
// exist.
SG_API bool PathIsNetworkPathW(const wchar_t* path);

// 0 when there is a file or folder of that name that may be used as the mode's bits say (0: it is
// there, 2: written, 4: read), else -1.
SG_API int _waccess(const wchar_t* path, int mode);

// Makes one folder, whose parent must exist. False, and GetLastError() tells why, when it cannot be
// made or is there already.
SG_API bool CreateDirectoryW(const wchar_t* path, const void* security);
// Removes an empty folder. False, and GetLastError() tells why, when it cannot be.
SG_API bool RemoveDirectoryW(const wchar_t* path);
