#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/export.h"

// Files as the host finds them. "/" and "\" both separate folders, and a name that does not exist
// as it is written is found ignoring case.

enum : uint32_t {
    FILE_ATTRIBUTE_DIRECTORY = 0x10,
    FILE_ATTRIBUTE_NORMAL = 0x80,
    FILE_ATTRIBUTE_REPARSE_POINT = 0x400,  // a link; with FILE_ATTRIBUTE_DIRECTORY, to a folder
};

struct WIN32_FIND_DATAW {
    uint32_t dwFileAttributes;
    wchar_t cFileName[260];  // without its folder, cut to 259 characters
};

struct SgFileSearch;
inline SgFileSearch* const INVALID_HANDLE_VALUE = reinterpret_cast<SgFileSearch*>(-1);

// Begins a search and answers its first find: the files and folders that match the last component
// of `pattern`, in which "*" stands for any text and "?" for any one character; in the order of the
// alphabet, folders "." and ".." first. INVALID_HANDLE_VALUE when nothing matches.
SG_API SgFileSearch* FindFirstFileW(const wchar_t* pattern, WIN32_FIND_DATAW* found);
// The next find; false after the last.
SG_API bool FindNextFileW(SgFileSearch* search, WIN32_FIND_DATAW* found);
SG_API bool FindClose(SgFileSearch* search);

// The name, with "/" as separator, of the file or folder that `path` stands for; when there is
// none, the name that a new one would get. For libraries that open files by themselves. This host's
// own.
SG_API std::wstring sgResolvePath(std::wstring_view path);

// The same as an absolute path. This host's own.
SG_API std::wstring sgFullPath(std::wstring_view path);
