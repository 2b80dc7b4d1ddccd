#include "host/seam/host.h"
#include "host/system/registry_handles.h"
#include "host/system/system_libraries.h"
#include "platform/win/libraries.h"
#include "platform/win/registry.h"
#include "platform/win/system.h"

// platform/win's registry, and the libraries in which modules look for more of it, on the Host.

using sg::Host;

namespace {

const wchar_t* orEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
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
