#include "host/system/registry_handles.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "host/system/registry.h"
#include "host/system/registry_bytes.h"
#include "platform/win/system.h"

namespace sg {
namespace {

constexpr uint32_t kAllAccess = KEY_READ | KEY_WRITE;

const SgOpenKey* rootOf(HKEY key) {
    static const std::array<std::pair<HKEY, SgOpenKey>, 5> roots = {{
        {HKEY_CLASSES_ROOT, {L"HKEY_CLASSES_ROOT", kAllAccess}},
        {HKEY_CURRENT_USER, {L"HKEY_CURRENT_USER", kAllAccess}},
        {HKEY_LOCAL_MACHINE, {L"HKEY_LOCAL_MACHINE", kAllAccess}},
        {HKEY_USERS, {L"HKEY_USERS", kAllAccess}},
        {HKEY_CURRENT_CONFIG, {L"HKEY_CURRENT_CONFIG", kAllAccess}},
    }};
    for (const auto& [handle, root] : roots) {
        if (handle == key) return &root;
    }
    return nullptr;
}

}  // namespace

const SgOpenKey* RegistryHandles::find(HKEY key) const {
    if (const SgOpenKey* const root = rootOf(key)) return root;
    const auto found = std::find_if(keys_.begin(), keys_.end(),
                                    [&](const auto& each) { return each.get() == key; });
    return found != keys_.end() ? found->get() : nullptr;
}

uint32_t RegistryHandles::open(HKEY parent, std::wstring_view subkey, uint32_t access, HKEY& key) {
    const SgOpenKey* const above = find(parent);
    if (above == nullptr) return ERROR_INVALID_HANDLE;
    std::wstring path = above->path;
    if (!subkey.empty()) path += L'\\' + std::wstring(subkey);
    if (!store_.keyExists(path)) return ERROR_FILE_NOT_FOUND;
    keys_.push_back(std::make_unique<SgOpenKey>(SgOpenKey{std::move(path), access}));
    key = keys_.back().get();
    return ERROR_SUCCESS;
}

uint32_t RegistryHandles::query(HKEY key, std::wstring_view name, uint32_t* type, uint8_t* data,
                                uint32_t* size) {
    const SgOpenKey* const open = find(key);
    if (open == nullptr) return ERROR_INVALID_HANDLE;
    if ((open->access & KEY_QUERY_VALUE) == 0) return ERROR_ACCESS_DENIED;
    if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
    const auto value = store_.read(open->path, name);
    if (!value) return ERROR_FILE_NOT_FOUND;
    const RegistryRaw raw = registryBytesOf(*value);
    if (type != nullptr) *type = raw.type;
    if (size == nullptr) return ERROR_SUCCESS;
    const uint32_t room = std::exchange(*size, static_cast<uint32_t>(raw.bytes.size()));
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < raw.bytes.size()) return ERROR_MORE_DATA;
    std::copy(raw.bytes.begin(), raw.bytes.end(), data);
    return ERROR_SUCCESS;
}

uint32_t RegistryHandles::set(HKEY key, std::wstring_view name, uint32_t type,
                              std::vector<uint8_t> bytes) {
    const SgOpenKey* const open = find(key);
    if (open == nullptr) return ERROR_INVALID_HANDLE;
    if ((open->access & KEY_SET_VALUE) == 0) return ERROR_ACCESS_DENIED;
    return static_cast<uint32_t>(store_.write(open->path, name, registryDataOf(type, bytes)));
}

uint32_t RegistryHandles::subkey(HKEY key, size_t index, std::wstring& name) {
    const SgOpenKey* const open = find(key);
    if (open == nullptr) return ERROR_INVALID_HANDLE;
    if ((open->access & KEY_ENUMERATE_SUB_KEYS) == 0) return ERROR_ACCESS_DENIED;
    const auto names = store_.subkeys(open->path);
    if (!names) return ERROR_FILE_NOT_FOUND;
    if (index >= names->size()) return ERROR_NO_MORE_ITEMS;
    name = (*names)[index];
    return ERROR_SUCCESS;
}

uint32_t RegistryHandles::close(HKEY key) {
    if (rootOf(key) != nullptr) return ERROR_SUCCESS;
    const size_t before = keys_.size();
    std::erase_if(keys_, [&](const auto& each) { return each.get() == key; });
    return keys_.size() < before ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

}  // namespace sg
