#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/system/registry_tree.h"

namespace sg {

// What registry operations answer, by the system of origin's numbers.
enum class RegistryError : uint32_t {
    none = 0,
    notFound = 2,           // no such key or value
    accessDenied = 5,       // a key with subkeys is not deleted; the file may not be written
    invalidParameter = 87,  // a path that RegistryTree::isValidPath refuses
    readWriteFailed = 1016,
};

// The settings of all programs in one tree of keys, kept in a text file whose format
// docs/formats/registry.md describes. A key is written root first, "HKEY_CURRENT_USER\Software\X";
// names of keys and values are found ignoring case and keep the spelling they were made with. The
// value with the empty name is the key's default value.
//
// Nothing is read before the first call. Every call sees what other processes have written, and
// every change is in the file, whole, when the call returns; processes that write at the same time
// wait for each other. Lines that are not understood are reported and stay in the file.
class SG_API RegistryStore {
  public:
    // `report` takes what is wrong with the file, one message a line of it.
    explicit RegistryStore(std::wstring file = defaultFile(),
                           std::function<void(const std::wstring&)> report = {});
    ~RegistryStore();

    // SWIFTGATE_REGISTRY of the environment, else swiftgate/registry in the configuration folder.
    static std::wstring defaultFile();

    bool keyExists(std::wstring_view key);
    std::optional<RegistryData> read(std::wstring_view key, std::wstring_view name);
    // Names in the order of the alphabet, and in the order in which they were made. nullopt when
    // there is no such key. The default value's name is empty.
    std::optional<std::vector<std::wstring>> subkeys(std::wstring_view key);
    std::optional<std::vector<std::wstring>> valueNames(std::wstring_view key);

    // Makes the key and those above it; one that exists is a success.
    RegistryError createKey(std::wstring_view key);
    // The same for several keys in one change.
    RegistryError createKeys(const std::vector<std::wstring>& keys);
    // Sets a value of a key that exists; with `create` the key is made first.
    RegistryError write(std::wstring_view key, std::wstring_view name, RegistryData data,
                        bool create = false);
    RegistryError deleteValue(std::wstring_view key, std::wstring_view name);
    // Deletes a key without subkeys, with its values. A root is not deleted (accessDenied).
    RegistryError deleteKey(std::wstring_view key);

    const std::wstring& file() const { return file_; }

  private:
    class Snapshot;

    RegistryTree& tree();  // as the file is now
    RegistryError refresh();
    void reportDamage();
    RegistryError change(const std::function<RegistryError(RegistryTree&)>& edit);

    const std::wstring file_;
    const std::function<void(const std::wstring&)> report_;
    RegistryTree tree_;
    std::unique_ptr<Snapshot> snapshot_;  // the file that tree_ was read from
    std::set<std::wstring> reported_;
};

}  // namespace sg
