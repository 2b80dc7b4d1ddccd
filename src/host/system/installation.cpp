#include "host/system/installation.h"

#include <string>
#include <vector>

#include "host/system/registry.h"

namespace sg {

void installSections(RegistryStore& registry) {
    const std::wstring product = L"HKEY_CURRENT_USER\\Software\\Quillon Software";
    if (registry.keyExists(product)) return;
    std::vector<std::wstring> keys;
    for (const wchar_t* const section : {L"Shared", L"Electrical", L"HVAC", L"Plumbing"})
        keys.push_back(product + L"\\" + section);
    RegistryStore(registry.file()).createKeys(keys);  // which has nobody to report to
}

}  // namespace sg
