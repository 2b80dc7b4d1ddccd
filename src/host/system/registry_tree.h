#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/export.h"

namespace sg {

struct RegistryText {
    std::wstring text;
    bool expandable = false;  // has %NAME% parts that readers may replace
    friend bool operator==(const RegistryText&, const RegistryText&) = default;
};

// The bytes of a value of a type that the other forms do not have, or that do not make its type: a
// text of an odd number of bytes, a number of five.
struct RegistryRaw {
    uint32_t type = 0;  // by the system of origin's numbers
    std::vector<uint8_t> bytes;
    friend bool operator==(const RegistryRaw&, const RegistryRaw&) = default;
};

// A value: text, a 32-bit number, bytes, several texts, or what is none of these.
using RegistryData = std::variant<RegistryText, uint32_t, std::vector<uint8_t>,
                                  std::vector<std::wstring>, RegistryRaw>;

struct RegistryValue {
    std::wstring name;
    RegistryData data;
};

struct RegistryKey {
    std::wstring name;                                             // as it was made
    std::map<std::wstring, std::unique_ptr<RegistryKey>> subkeys;  // by name in lower case
    std::vector<RegistryValue> values;
    std::vector<std::string> foreignLines;  // comments and damaged lines that follow the key

    RegistryValue* findValue(std::wstring_view valueName);
};

// The keys in memory, and their form as text.
class SG_API RegistryTree {
  public:
    // Replaces everything by what `bytes` hold. Lines that are not understood are kept and listed
    // in damage().
    void parse(std::string_view bytes);
    std::string format() const;

    struct Damage {
        size_t line;  // 1-based
        std::wstring what;
    };
    const std::vector<Damage>& damage() const { return damage_; }

    // The key under a path from its root on; null when there is none, or no such root.
    RegistryKey* find(std::wstring_view path);
    // The same, with the missing keys made. Null for a path that isValidPath() refuses.
    RegistryKey* create(std::wstring_view path);
    // Takes a key without subkeys away; its foreign lines go to the key above.
    void remove(std::wstring_view path);

    // True when the path starts with one of the five roots, has at most 512 names, and none of them
    // has control characters.
    static bool isValidPath(std::wstring_view path);

    // The names in a path; empty ones, of repeated separators, do not count.
    static std::vector<std::wstring> split(std::wstring_view path);

  private:
    RegistryKey top_;  // its subkeys are the roots; its foreign lines stand at the file's start
    std::vector<Damage> damage_;
};

}  // namespace sg
