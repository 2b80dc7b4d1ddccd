#include <algorithm>
#include <filesystem>
#include <string>

#include "base/encoding.h"
#include "host/seam/host.h"
#include "host/system/files.h"
#include "host/system/folders.h"
#include "host/system/paths.h"
#include "platform/win/folders.h"
#include "platform/win/system.h"

// platform/win/folders.h.

using namespace sg;

uint32_t GetFileAttributesW(const wchar_t* path) {
    const ResolvedPath found = resolvePath(path != nullptr ? path : L"");
    if (!found.exists) return INVALID_FILE_ATTRIBUTES;
    uint32_t attributes = isFolder(found.path) ? uint32_t{FILE_ATTRIBUTE_DIRECTORY} : 0;
    if (isReadOnly(found.path)) attributes |= FILE_ATTRIBUTE_READONLY;
    return attributes != 0 ? attributes : uint32_t{FILE_ATTRIBUTE_NORMAL};
}

bool CreateDirectoryW(const wchar_t* path, const void*) {
    const ResolvedPath found = resolvePath(path != nullptr ? path : L"");
    if (makeFolder(found.path)) return true;
    const std::wstring_view parent = parentFolder(withSlashes(found.path));
    const bool hasParent = parent.empty() || isFolder(parent);
    SetLastError(found.exists ? ERROR_ALREADY_EXISTS
                 : hasParent  ? ERROR_ACCESS_DENIED
                              : ERROR_PATH_NOT_FOUND);
    return false;
}

bool RemoveDirectoryW(const wchar_t* path) {
    const ResolvedPath found = resolvePath(path != nullptr ? path : L"");
    if (removeFolder(found.path)) return true;
    SetLastError(found.exists ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
    return false;
}

uint32_t GetTempPathW(uint32_t capacity, wchar_t* path) {
    std::wstring folder = knownFolder(KnownFolder::temporary);
    if (!folder.ends_with(L'/')) folder += L'/';
    if (path == nullptr || folder.size() >= capacity)
        return static_cast<uint32_t>(folder.size() + 1);
    std::copy_n(folder.c_str(), folder.size() + 1, path);
    return static_cast<uint32_t>(folder.size());
}

int32_t SHGetFolderPathW(HWND, int folder, void*, uint32_t, wchar_t* path) {
    constexpr auto kFailed = static_cast<int32_t>(0x80004005);
    constexpr auto kInvalidArgument = static_cast<int32_t>(0x80070057);
    if (path == nullptr) return kInvalidArgument;
    *path = 0;
    if ((folder & ~CSIDL_FLAG_CREATE) != CSIDL_DESKTOPDIRECTORY) return kInvalidArgument;
    const std::wstring found = knownFolder(KnownFolder::desktop);
    std::error_code ignored;
    if ((folder & CSIDL_FLAG_CREATE) != 0)
        std::filesystem::create_directories(toUtf8(found), ignored);
    if (!isFolder(found) || found.size() >= MAX_PATH) return kFailed;
    std::copy_n(found.c_str(), found.size() + 1, path);
    return S_OK;
}
