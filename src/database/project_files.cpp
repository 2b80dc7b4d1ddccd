#include "database/project_files.h"

#include <string_view>

#include "base/text.h"
#include "platform/win/files.h"

namespace sg {
namespace {

constexpr std::wstring_view kProductPrefix = L"52-QN";

bool isProjectFile(const WIN32_FIND_DATAW& found) {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return false;
    const std::wstring name = upperCased(found.cFileName);
    return !name.starts_with(kProductPrefix) && name.find(L"_MASTER") == std::wstring::npos &&
           name.find(L"_STANDARDS") == std::wstring::npos;
}

}  // namespace

std::wstring findProjectFile(const std::wstring& directory, const std::wstring& prefix,
                             const std::wstring& extension) {
    const std::wstring pattern = directory + L"\\*" + prefix + L"*." + extension;
    WIN32_FIND_DATAW found;
    SgFileSearch* const search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return {};
    std::wstring match;
    int matches = 0;
    do {
        if (!isProjectFile(found)) continue;
        match = found.cFileName;
        ++matches;
    } while (matches < 2 && FindNextFileW(search, &found));
    FindClose(search);
    return matches == 1 ? sgFullPath(directory + L"\\" + match) : std::wstring();
}

std::wstring findProjectDatabase(const std::wstring& directory, const std::wstring& prefix) {
    const std::wstring found = findProjectFile(directory, prefix, L"qn");
    return found.empty() ? findProjectFile(directory, prefix, L"mdb") : found;
}

}  // namespace sg
