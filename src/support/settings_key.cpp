#include "support/settings_key.h"

#include <vector>

#include "base/encoding.h"
#include "platform/win/libraries.h"
#include "platform/win/system.h"

namespace sg {
namespace {

using OpenTransacted = int32_t (*)(HKEY parent, const wchar_t* subkey, uint32_t options,
                                   uint32_t access, HKEY* key, void* transaction, void* extended);

// Older systems do not have the function, so that it is looked up by name.
OpenTransacted findOpenTransacted() {
    const FARPROC found =
        GetProcAddress(GetModuleHandleW(L"Advapi32.dll"), "RegOpenKeyTransactedW");
    return reinterpret_cast<OpenTransacted>(found);
}

}  // namespace

int32_t SettingsKey::openPlainOrTransacted(HKEY parent, const wchar_t* path, uint32_t access,
                                           HKEY& key) const {
    if (transactions_ == nullptr) return RegOpenKeyExW(parent, path, 0, access, &key);
    const OpenTransacted open = findOpenTransacted();
    if (open == nullptr) return ERROR_INVALID_FUNCTION;
    return open(parent, path, 0, access, &key, transactions_->transaction, nullptr);
}

int32_t SettingsKey::Open(HKEY parent, const std::wstring& path, uint32_t access) {
    HKEY key = nullptr;
    const int32_t error = openPlainOrTransacted(parent, path.c_str(), access, key);
    if (error != ERROR_SUCCESS) return error;
    Close();
    handle_ = key;
    viewFlags_ = access & (KEY_WOW64_32KEY | KEY_WOW64_64KEY);
    return ERROR_SUCCESS;
}

int32_t SettingsKey::Close() {
    if (handle_ == nullptr) return ERROR_SUCCESS;
    const int32_t error = RegCloseKey(handle_);
    handle_ = nullptr;
    viewFlags_ = 0;
    return error;
}

int32_t SettingsKey::QueryText(const std::wstring& name, std::wstring& text) const {
    text.clear();
    uint32_t type = REG_NONE, size = 0;
    int32_t error = RegQueryValueExW(handle_, name.c_str(), nullptr, &type, nullptr, &size);
    if (error != ERROR_SUCCESS) return error;
    if (type != REG_SZ && type != REG_EXPAND_SZ) return ERROR_INVALID_DATA;

    std::vector<uint8_t> bytes(size);
    error = RegQueryValueExW(handle_, name.c_str(), nullptr, &type, bytes.data(), &size);
    if (error != ERROR_SUCCESS) return error;
    if (type != REG_SZ && type != REG_EXPAND_SZ) return ERROR_INVALID_DATA;
    if (size == 0) return ERROR_SUCCESS;
    if (size % 2 != 0 || bytes[size - 2] != 0 || bytes[size - 1] != 0) return ERROR_INVALID_DATA;

    std::u16string units;
    for (size_t i = 0; i < size; i += 2)
        units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    text = fromUtf16(units.c_str());
    return ERROR_SUCCESS;
}

int32_t SettingsKey::SetText(const std::wstring& name, std::wstring_view text) {
    std::vector<uint8_t> bytes;
    for (const char16_t unit : toUtf16(text)) {
        bytes.push_back(static_cast<uint8_t>(unit));
        bytes.push_back(static_cast<uint8_t>(unit >> 8));
    }
    bytes.insert(bytes.end(), {0, 0});
    return RegSetValueExW(handle_, name.c_str(), 0, REG_SZ, bytes.data(),
                          static_cast<uint32_t>(bytes.size()));
}

}  // namespace sg
