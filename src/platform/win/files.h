#pragma once

#include <cstdint>
#include <cstdio>

#include "base/export.h"

// Files by name. "/" and "\" both separate folders, and a name that matches nothing as written is
// tried again ignoring case.

enum : uint32_t {
    FILE_ATTRIBUTE_READONLY = 0x1,
    FILE_ATTRIBUTE_DIRECTORY = 0x10,
    FILE_ATTRIBUTE_NORMAL = 0x80,
    INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF,
};

// What a file or folder is; INVALID_FILE_ATTRIBUTES when there is none of that name.
SG_API uint32_t GetFileAttributesW(const wchar_t* path);

// Makes one folder, whose parent must exist. False, and GetLastError() tells why, when it cannot be
// made or is there already.
SG_API bool CreateDirectoryW(const wchar_t* path, const void* security);

// The C library's fopen, in binary in any mode. Null on failure.
SG_API std::FILE* _wfopen(const wchar_t* path, const wchar_t* mode);
