#pragma once

#include <cstdint>

#include "base/export.h"

// Operations on whole files, named as platform/win/files.h tells. Where one answers false,
// GetLastError() tells why. A read-only file is one that nobody, or not this process, may write.

// Copies a file with its permissions and the time when it was last written. An existing target is
// replaced unless `failIfExists` is set; a read-only one and a database that is open are not.
SG_API bool CopyFileW(const wchar_t* from, const wchar_t* to, bool failIfExists);

// Renames a file or folder, or moves a file, to a name that does not exist.
SG_API bool MoveFileW(const wchar_t* from, const wchar_t* to);

// Removes a file that is not read-only.
SG_API bool DeleteFileW(const wchar_t* path);

// A file that is open to be read, which keeps nobody else from it. This host's own. What programs
// that have a database open have written to it by now is in its file.
struct SgOpenFile;
// Null when the file cannot be read.
SG_API SgOpenFile* sgOpenFile(const wchar_t* path);
// When it was last written, in seconds since 1970.
SG_API int64_t sgWriteTime(const SgOpenFile* file);
SG_API void sgCloseFile(SgOpenFile* file);
