#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/win/registry.h"

// What HKEY points to, but for the roots.
struct SgOpenKey {
    std::wstring path;  // root first
    uint32_t access;
};

namespace sg {

class RegistryStore;

// The open keys of one host: what the functions of platform/win/registry.h do on the store. All
// answer the codes of platform/win/system.h.
class SG_API RegistryHandles {
  public:
    explicit RegistryHandles(RegistryStore& store) : store_(store) {}
    RegistryHandles(const RegistryHandles&) = delete;
    RegistryHandles& operator=(const RegistryHandles&) = delete;

    uint32_t open(HKEY parent, std::wstring_view subkey, uint32_t access, HKEY& key);
    uint32_t query(HKEY key, std::wstring_view name, uint32_t* type, uint8_t* data, uint32_t* size);
    uint32_t set(HKEY key, std::wstring_view name, uint32_t type, std::vector<uint8_t> bytes);
    // The name of the `index`-th subkey.
    uint32_t subkey(HKEY key, size_t index, std::wstring& name);
    uint32_t close(HKEY key);

    size_t openKeys() const { return keys_.size(); }

  private:
    const SgOpenKey* find(HKEY key) const;  // null when it is neither open nor a root

    RegistryStore& store_;
    std::vector<std::unique_ptr<SgOpenKey>> keys_;
};

}  // namespace sg
