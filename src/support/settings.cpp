#include "support/settings.h"

#include "platform/win/folders.h"
#include "support/settings_key.h"

namespace sg {
namespace {

std::wstring keyPath(std::wstring_view section) {
    return L"Software\\Quillon Software\\" + std::wstring(section);
}

bool folderExists(const std::wstring& path) {
    const uint32_t attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

std::wstring GetRegistryText(std::wstring_view section, const std::wstring& valueName) {
    SettingsKey key;
    std::wstring text;
    if (key.Open(HKEY_CURRENT_USER, keyPath(section), KEY_READ) == 0)
        key.QueryText(valueName, text);
    return text;
}

int32_t SetRegistryText(std::wstring_view text, const std::wstring& valueName,
                        std::wstring_view section) {
    SettingsKey key;
    const int32_t error = key.Open(HKEY_CURRENT_USER, keyPath(section), KEY_WRITE);
    return error != 0 ? error : key.SetText(valueName, text);
}

bool GetTempFolder(std::wstring& folder) {
    wchar_t path[MAX_PATH] = L"";
    const uint32_t length = GetTempPathW(MAX_PATH, path);
    folder.clear();
    if (length == 0 || length >= MAX_PATH) return false;
    // The separator is written also behind the one that the system's path ends with.
    const std::wstring candidate = std::wstring(path) + L"/QN_temp/";
    if (!folderExists(candidate) && !CreateDirectoryW(candidate.c_str(), nullptr)) return false;
    folder = candidate;
    return true;
}

}  // namespace sg
