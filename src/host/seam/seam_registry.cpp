#include <algorithm>
#include <string>

#include "host/seam/host.h"
#include "host/system/companion_library.h"
#include "host/system/registry.h"
#include "host/system/registry_handles.h"
#include "host/system/system_libraries.h"
#include "platform/win/libraries.h"
#include "platform/win/profile.h"
#include "platform/win/registry.h"
#include "platform/win/system.h"

// platform/win's registry, and the libraries in which modules look for more of it, on the Host.

using sg::Host;

namespace {

const wchar_t* orEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

std::wstring profileKey(const wchar_t* section) {
    return std::wstring(L"HKEY_CURRENT_USER\\Software\\Swift Gate\\") + orEmpty(section);
}

}  // namespace

int32_t RegOpenKeyExW(HKEY parent, const wchar_t* subkey, uint32_t, uint32_t access, HKEY* key) {
    if (key == nullptr) return ERROR_INVALID_PARAMETER;
    const uint32_t error =
        Host::the().registryHandles().open(parent, orEmpty(subkey), access, *key);
    return static_cast<int32_t>(error);
}

int32_t RegQueryValueExW(HKEY key, const wchar_t* name, uint32_t*, uint32_t* type, uint8_t* data,
                         uint32_t* size) {
    const uint32_t error =
        Host::the().registryHandles().query(key, orEmpty(name), type, data, size);
    return static_cast<int32_t>(error);
}

int32_t RegSetValueExW(HKEY key, const wchar_t* name, uint32_t, uint32_t type, const uint8_t* data,
                       uint32_t size) {
    if (data == nullptr && size > 0) return ERROR_INVALID_PARAMETER;
    const uint32_t error =
        Host::the().registryHandles().set(key, orEmpty(name), type, {data, data + size});
    return static_cast<int32_t>(error);
}

int32_t RegEnumKeyExW(HKEY key, uint32_t index, wchar_t* name, uint32_t* size, uint32_t*, wchar_t*,
                      uint32_t*, void*) {
    if (name == nullptr || size == nullptr) return ERROR_INVALID_PARAMETER;
    std::wstring found;
    const uint32_t error = Host::the().registryHandles().subkey(key, index, found);
    if (error != ERROR_SUCCESS) return static_cast<int32_t>(error);
    if (found.size() >= *size) return ERROR_MORE_DATA;
    std::copy_n(found.c_str(), found.size() + 1, name);
    *size = static_cast<uint32_t>(found.size());
    return ERROR_SUCCESS;
}

int32_t RegCloseKey(HKEY key) {
    return static_cast<int32_t>(Host::the().registryHandles().close(key));
}

HMODULE GetModuleHandleW(const wchar_t* name) {
    return Host::the().libraries().find(orEmpty(name));
}

HMODULE LoadLibraryW(const wchar_t* name) {
    return Host::the().libraries().open(orEmpty(name));
}

FARPROC GetProcAddress(HMODULE library, const char* name) {
    if (library == nullptr || name == nullptr) return nullptr;
    if (!library->companion.empty()) {
        return reinterpret_cast<FARPROC>(sg::companionSymbol(library->companion.c_str(), name));
    }
    const auto found = library->functions.find(std::string_view(name));
    return found != library->functions.end() ? found->second : nullptr;
}

void* sgOwnLibrarySymbol(const char* library, const char* symbol) {
    return sg::companionSymbol(library, symbol);
}

CWinApp* AfxGetApp() {
    static CWinApp application;
    return &application;
}

std::wstring CWinApp::GetProfileString(const wchar_t* section, const wchar_t* entry,
                                       const wchar_t* byDefault) {
    const auto data = Host::the().registry().read(profileKey(section), orEmpty(entry));
    const auto* text = data ? std::get_if<sg::RegistryText>(&*data) : nullptr;
    return text != nullptr ? text->text : orEmpty(byDefault);
}

bool CWinApp::WriteProfileString(const wchar_t* section, const wchar_t* entry,
                                 const wchar_t* value) {
    sg::RegistryStore& registry = Host::the().registry();
    const std::wstring key = profileKey(section);
    const sg::RegistryError error =
        value != nullptr ? registry.write(key, orEmpty(entry), sg::RegistryText{value}, true)
                         : registry.deleteValue(key, orEmpty(entry));
    return error == sg::RegistryError::none || error == sg::RegistryError::notFound;
}
