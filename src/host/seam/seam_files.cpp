#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "host/system/paths.h"
#include "platform/win/files.h"
#include "platform/win/system.h"

// platform/win/files.h.

struct SgFileSearch {
    std::wstring folder;
    std::vector<std::wstring> names;
    size_t next = 0;
};

namespace {

namespace fs = std::filesystem;

// The names that a pattern finds. One without wildcards finds the file that it stands for, and not
// others that differ in case.
std::vector<std::wstring> namesOf(std::wstring_view pattern, std::wstring_view folder) {
    const std::wstring_view last = sg::lastComponent(pattern);
    if (last.empty()) return {};
    if (last.find_first_of(L"*?") != std::wstring_view::npos) {
        return sg::listFolder(folder, last, sg::ListedEntries::all);
    }
    const sg::ResolvedPath found = sg::resolvePath(pattern);
    if (!found.exists) return {};
    return {std::wstring(sg::lastComponent(found.path))};
}

uint32_t attributesOf(const std::wstring& path) {
    std::error_code ignored;
    const fs::path file(sg::toUtf8(path));
    const bool isFolder = fs::is_directory(file, ignored);
    const bool isLink = fs::is_symlink(file, ignored);
    const uint32_t attributes =
        (isFolder ? FILE_ATTRIBUTE_DIRECTORY : 0u) | (isLink ? FILE_ATTRIBUTE_REPARSE_POINT : 0u);
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

}  // namespace

SgFileSearch* FindFirstFileW(const wchar_t* pattern, WIN32_FIND_DATAW* found) {
    const std::wstring written = sg::withSlashes(pattern != nullptr ? pattern : L"");
    std::wstring folder(sg::parentFolder(written));
    std::vector<std::wstring> names = namesOf(written, folder);
    folder = folder.empty() ? L"." : sg::resolvePath(folder).path;
    auto* const search = new SgFileSearch{std::move(folder), std::move(names)};
    if (FindNextFileW(search, found)) return search;
    FindClose(search);
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}

bool FindNextFileW(SgFileSearch* search, WIN32_FIND_DATAW* found) {
    if (search->next == search->names.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return false;
    }
    const std::wstring& name = search->names[search->next++];
    found->dwFileAttributes = attributesOf(sg::joinPath(search->folder, name));
    const size_t length = std::min(name.size(), std::size(found->cFileName) - 1);
    std::wmemcpy(found->cFileName, name.data(), length);
    found->cFileName[length] = L'\0';
    return true;
}

bool FindClose(SgFileSearch* search) {
    delete search;
    return true;
}

std::wstring sgResolvePath(std::wstring_view path) {
    return sg::resolvePath(path).path;
}

std::wstring sgFullPath(std::wstring_view path) {
    return sg::absolutePath(sg::resolvePath(path).path);
}
