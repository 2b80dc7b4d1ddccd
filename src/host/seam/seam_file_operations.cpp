#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/encoding.h"
#include "host/system/database_files.h"
#include "host/system/files.h"
#include "host/system/paths.h"
#include "platform/win/file_operations.h"
#include "platform/win/system.h"

// platform/win/file_operations.h.

struct SgOpenFile {
    int descriptor;
};

namespace {

const wchar_t* orEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

// True for a success; otherwise the last error is set, by whether there is something at `path`.
bool noted(const sg::FileResult& result, const wchar_t* path) {
    if (result) return true;
    SetLastError(sg::resolvePath(path).exists ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
    return false;
}

}  // namespace

bool CopyFileW(const wchar_t* from, const wchar_t* to, bool failIfExists) {
    if (failIfExists && sg::resolvePath(orEmpty(to)).exists) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return false;
    }
    return noted(sg::copyOverFile(orEmpty(from), orEmpty(to)), orEmpty(from));
}

bool MoveFileW(const wchar_t* from, const wchar_t* to) {
    return noted(sg::renameFile(orEmpty(from), orEmpty(to)), orEmpty(from));
}

bool DeleteFileW(const wchar_t* path) {
    if (sg::isReadOnly(orEmpty(path))) {
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    return noted(sg::deleteFile(orEmpty(path)), orEmpty(path));
}

SgOpenFile* sgOpenFile(const wchar_t* path) {
    const std::wstring found = sg::resolvePath(orEmpty(path)).path;
    if (!sg::isRegularFile(found)) return nullptr;
    // A write that still stands in a database's log counts for the time of the last one.
    const sg::WholeDatabaseFile whole(found);
    const int descriptor = ::open(sg::toUtf8(found).c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor < 0 ? nullptr : new SgOpenFile{descriptor};
}

int64_t sgWriteTime(const SgOpenFile* file) {
    struct stat info;
    return ::fstat(file->descriptor, &info) == 0 ? int64_t{info.st_mtime} : 0;
}

void sgCloseFile(SgOpenFile* file) {
    if (file == nullptr) return;
    ::close(file->descriptor);
    delete file;
}
