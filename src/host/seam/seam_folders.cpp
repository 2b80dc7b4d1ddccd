#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "base/encoding.h"
#include "host/seam/host.h"
#include "host/system/files.h"
#include "host/system/folders.h"
#include "host/system/mounts.h"
#include "host/system/paths.h"
#include "platform/win/folders.h"
#include "platform/win/system.h"

// platform/win/folders.h.

using namespace sg;

namespace {

struct NumberedFolder {
    std::wstring path;
    bool isBase;  // programs keep files there without asking: it is made when it is not there
};

// docs/folders.md has this table.
std::optional<NumberedFolder> folderOfNumber(int number) {
    const auto base = [](KnownFolder folder) { return NumberedFolder{knownFolder(folder), true}; };
    const auto at = [](std::wstring path) { return NumberedFolder{std::move(path), false}; };
    switch (number) {
        case CSIDL_APPDATA:
            return base(KnownFolder::configuration);
        case CSIDL_LOCAL_APPDATA:
            return base(KnownFolder::data);
        case CSIDL_INTERNET_CACHE:
            return base(KnownFolder::cache);
        case CSIDL_COOKIES:
        case CSIDL_HISTORY:
            return base(KnownFolder::state);
        case CSIDL_DESKTOP:
        case CSIDL_DESKTOPDIRECTORY:
            return at(knownFolder(KnownFolder::desktop));
        case CSIDL_PERSONAL:
            return at(knownFolder(KnownFolder::documents));
        case CSIDL_MYPICTURES:
            return at(knownFolder(KnownFolder::pictures));
        case CSIDL_COMMON_DOCUMENTS:
            return at(knownFolder(KnownFolder::publicShare));
        case CSIDL_ADMINTOOLS:
            return at(joinPath(knownFolder(KnownFolder::data), L"applications"));
        case CSIDL_COMMON_ADMINTOOLS:
            return at(L"/usr/share/applications");
        case CSIDL_COMMON_APPDATA:
            return at(knownFolder(KnownFolder::sharedData));
        case CSIDL_PROGRAM_FILES:
            return at(L"/opt");
        case CSIDL_PROGRAM_FILES_COMMON:
            return at(L"/usr/share");
        case CSIDL_SYSTEM:
            return at(L"/usr/bin");
        case CSIDL_WINDOWS:
            return at(L"/usr");
        default:
            return std::nullopt;
    }
}

// Makes a folder, and those above it, that nobody but the user may look into.
void makeForUser(const std::wstring& path) {
    const mode_t before = ::umask(077);
    std::error_code ignored;
    std::filesystem::create_directories(toUtf8(path), ignored);
    ::umask(before);
}

}  // namespace

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
    const std::wstring slashed = withSlashes(found.path);
    const std::wstring_view parent = parentFolder(slashed);
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
    const auto found = folderOfNumber(folder & ~CSIDL_FLAG_CREATE);
    if (!found) return kInvalidArgument;
    if (found->isBase || (folder & CSIDL_FLAG_CREATE) != 0) makeForUser(found->path);
    if (!isFolder(found->path) || found->path.size() >= MAX_PATH) return kFailed;
    std::copy_n(found->path.c_str(), found->path.size() + 1, path);
    return S_OK;
}

bool PathIsNetworkPathW(const wchar_t* path) {
    return path != nullptr && isNetworkPath(path);
}

int _waccess(const wchar_t* path, int mode) {
    constexpr int kWrite = 2, kRead = 4;
    const ResolvedPath found = resolvePath(path != nullptr ? path : L"");
    const int asked = ((mode & kWrite) != 0 ? W_OK : 0) | ((mode & kRead) != 0 ? R_OK : 0);
    if (found.exists && ::access(toUtf8(found.path).c_str(), asked) == 0) return 0;
    SetLastError(found.exists ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
    return -1;
}
