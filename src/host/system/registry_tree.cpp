#include "host/system/registry_tree.h"

#include <algorithm>

#include "base/encoding.h"
#include "base/text.h"
#include "host/system/registry_bytes.h"

namespace sg {
namespace {

constexpr std::string_view kFirstLine = "# Swift Gate registry, version 1";

constexpr std::wstring_view kRoots[] = {L"HKEY_CLASSES_ROOT", L"HKEY_CURRENT_USER",
                                        L"HKEY_LOCAL_MACHINE", L"HKEY_USERS",
                                        L"HKEY_CURRENT_CONFIG"};

constexpr size_t kMostLevels = 512;  // of keys, the system of origin's own limit

bool isControl(wchar_t c) {
    return c < 0x20 || c == 0x7F;
}

// What UTF-8 cannot hold on one line is written by its number.
bool needsNumber(wchar_t c) {
    return isControl(c) || (c >= 0xD800 && c < 0xE000);
}

char hexDigit(unsigned value) {
    return "0123456789abcdef"[value & 15];
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string quoted(std::wstring_view text) {
    std::string out = "\"";
    for (const wchar_t c : text) {
        if (c == L'"' || c == L'\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c == L'\n') {
            out += "\\n";
        } else if (needsNumber(c)) {
            out += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4) {
                out += hexDigit(static_cast<unsigned>(c) >> shift);
            }
        } else {
            out += toUtf8(std::wstring_view(&c, 1));
        }
    }
    return out + '"';
}

std::string hexNumber(uint32_t number) {
    std::string out;
    for (int shift = 28; shift >= 0; shift -= 4)
        out += hexDigit(number >> shift);
    return out;
}

std::string hexBytes(const std::vector<uint8_t>& bytes) {
    std::string out;
    for (const uint8_t byte : bytes) {
        if (!out.empty()) out += ',';
        out += {hexDigit(byte >> 4), hexDigit(byte)};
    }
    return out;
}

std::string quotedTexts(const std::vector<std::wstring>& texts) {
    std::string out;
    for (const std::wstring& text : texts) {
        if (!out.empty()) out += ',';
        out += quoted(text);
    }
    return out;
}

std::string formatted(const RegistryData& data) {
    if (const auto* const text = std::get_if<RegistryText>(&data)) {
        return (text->expandable ? "expand:" : "") + quoted(text->text);
    }
    if (const auto* const number = std::get_if<uint32_t>(&data)) {
        return "dword:" + hexNumber(*number);
    }
    if (const auto* const bytes = std::get_if<std::vector<uint8_t>>(&data)) {
        return "hex:" + hexBytes(*bytes);
    }
    if (const auto* const texts = std::get_if<std::vector<std::wstring>>(&data)) {
        return "multi:" + quotedTexts(*texts);
    }
    const auto& raw = std::get<RegistryRaw>(data);
    return "hex(" + hexNumber(raw.type) + "):" + hexBytes(raw.bytes);
}

// Reads the pieces of one line from its left. Every take... answers false, or nothing, when the
// piece is not there.
class Scanner {
  public:
    explicit Scanner(std::string_view rest) : rest_(rest) {}

    bool atEnd() const { return rest_.empty(); }

    bool take(std::string_view word) {
        if (!rest_.starts_with(word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }

    bool takeHex(size_t digits, uint32_t& value) {
        if (rest_.size() < digits) return false;
        value = 0;
        for (const char c : rest_.substr(0, digits)) {
            if (hexValue(c) < 0) return false;
            value = value << 4 | static_cast<uint32_t>(hexValue(c));
        }
        rest_.remove_prefix(digits);
        return true;
    }

    bool takeQuoted(std::wstring& out) {
        if (!take("\"")) return false;
        std::string plain;
        out.clear();
        while (!rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            if (c == '"') {
                out += fromUtf8(plain);
                return true;
            }
            if (c != '\\') {
                plain += c;
                continue;
            }
            uint32_t code = 0;
            if (take("u")) {
                if (!takeHex(4, code)) return false;
                out += fromUtf8(plain) + static_cast<wchar_t>(code);
                plain.clear();
            } else if (take("n")) {
                plain += '\n';
            } else if (take("\"")) {
                plain += '"';
            } else if (take("\\")) {
                plain += '\\';
            } else {
                return false;
            }
        }
        return false;
    }

    std::optional<RegistryData> takeData() {
        RegistryText text;
        if (takeQuoted(text.text)) return text;
        if (take("expand:")) {
            text.expandable = true;
            return takeQuoted(text.text) ? std::optional<RegistryData>(text) : std::nullopt;
        }
        if (uint32_t number = 0; take("dword:")) {
            return takeHex(8, number) ? std::optional<RegistryData>(number) : std::nullopt;
        }
        if (take("hex:")) return takeBytes();
        if (take("hex(")) return takeRaw();
        if (take("multi:")) return takeTexts();
        return std::nullopt;
    }

  private:
    // Bytes that make their type after all become the value that they make.
    std::optional<RegistryData> takeRaw() {
        uint32_t type = 0;
        if (!takeHex(8, type) || !take("):")) return std::nullopt;
        const auto bytes = takeBytes();
        return bytes ? std::optional(registryDataOf(type, *bytes)) : std::nullopt;
    }

    std::optional<std::vector<uint8_t>> takeBytes() {
        std::vector<uint8_t> bytes;
        for (uint32_t byte = 0; !atEnd(); bytes.push_back(static_cast<uint8_t>(byte))) {
            if (!bytes.empty() && !take(",")) return std::nullopt;
            if (!takeHex(2, byte)) return std::nullopt;
        }
        return bytes;
    }

    std::optional<RegistryData> takeTexts() {
        std::vector<std::wstring> texts;
        for (std::wstring text; !atEnd(); texts.push_back(text)) {
            if (!texts.empty() && !take(",")) return std::nullopt;
            if (!takeQuoted(text)) return std::nullopt;
        }
        return texts;
    }

    std::string_view rest_;
};

std::optional<RegistryValue> parsedValue(std::string_view line) {
    Scanner scanner(line);
    RegistryValue value;
    if (!scanner.take("@") && (!scanner.takeQuoted(value.name) || value.name.empty())) {
        return std::nullopt;
    }
    if (!scanner.take("=")) return std::nullopt;
    auto data = scanner.takeData();
    if (!data || !scanner.atEnd()) return std::nullopt;
    value.data = std::move(*data);
    return value;
}

void setValue(RegistryKey& key, RegistryValue value) {
    if (RegistryValue* const found = key.findValue(value.name)) {
        found->data = std::move(value.data);
    } else {
        key.values.push_back(std::move(value));
    }
}

RegistryKey& subkey(RegistryKey& parent, const std::wstring& name) {
    auto& place = parent.subkeys[lowerCased(name)];
    if (place == nullptr) {
        place = std::make_unique<RegistryKey>();
        place->name = name;
    }
    return *place;
}

// A key that only holds subkeys is implied by them and has no lines of its own.
void append(std::string& out, const RegistryKey& key, const std::wstring& path) {
    if (key.subkeys.empty() || !key.values.empty() || !key.foreignLines.empty()) {
        out += "\n[" + toUtf8(path) + "]\n";
        for (const RegistryValue& value : key.values) {
            out += value.name.empty() ? "@" : quoted(value.name);
            out += '=' + formatted(value.data) + '\n';
        }
        for (const std::string& line : key.foreignLines)
            out += line + '\n';
    }
    for (const auto& [name, each] : key.subkeys)
        append(out, *each, path + L'\\' + each->name);
}

}  // namespace

RegistryValue* RegistryKey::findValue(std::wstring_view valueName) {
    const auto found = std::find_if(values.begin(), values.end(), [&](const RegistryValue& each) {
        return equalIgnoringCase(each.name, valueName);
    });
    return found != values.end() ? &*found : nullptr;
}

std::vector<std::wstring> RegistryTree::split(std::wstring_view path) {
    std::vector<std::wstring> names;
    for (size_t start = 0; start < path.size();) {
        const size_t end = std::min(path.find(L'\\', start), path.size());
        if (end > start) names.emplace_back(path.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

bool RegistryTree::isValidPath(std::wstring_view path) {
    const auto names = split(path);
    if (names.empty() || names.size() > kMostLevels ||
        std::any_of(path.begin(), path.end(), needsNumber))
        return false;
    return std::any_of(std::begin(kRoots), std::end(kRoots),
                       [&](std::wstring_view root) { return equalIgnoringCase(root, names[0]); });
}

RegistryKey* RegistryTree::find(std::wstring_view path) {
    RegistryKey* key = &top_;
    for (const std::wstring& name : split(path)) {
        const auto found = key->subkeys.find(lowerCased(name));
        if (found == key->subkeys.end()) return nullptr;
        key = found->second.get();
    }
    return key != &top_ ? key : nullptr;
}

RegistryKey* RegistryTree::create(std::wstring_view path) {
    if (!isValidPath(path)) return nullptr;
    RegistryKey* key = &top_;
    for (const std::wstring& name : split(path))
        key = &subkey(*key, name);
    return key;
}

void RegistryTree::remove(std::wstring_view path) {
    auto names = split(path);
    if (names.empty()) return;
    const std::wstring last = lowerCased(names.back());
    names.pop_back();
    RegistryKey* parent = &top_;
    for (const std::wstring& name : names) {
        const auto found = parent->subkeys.find(lowerCased(name));
        if (found == parent->subkeys.end()) return;
        parent = found->second.get();
    }
    const auto found = parent->subkeys.find(last);
    if (found == parent->subkeys.end()) return;
    auto& kept = parent->foreignLines;
    const auto& lines = found->second->foreignLines;
    kept.insert(kept.end(), lines.begin(), lines.end());
    parent->subkeys.erase(found);
}

void RegistryTree::parse(std::string_view bytes) {
    top_ = RegistryKey{};
    damage_.clear();
    for (const std::wstring_view root : kRoots)
        subkey(top_, std::wstring(root));
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);

    RegistryKey* keeper = &top_;     // takes the lines that are not understood
    RegistryKey* current = nullptr;  // takes values; null behind a key line that is damaged
    size_t number = 0;
    for (size_t start = 0; start < bytes.size();) {
        const size_t end = std::min(bytes.find('\n', start), bytes.size());
        std::string_view line = bytes.substr(start, end - start);
        start = end + 1;
        ++number;
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty() || (line == kFirstLine && keeper == &top_)) continue;

        const auto keep = [&](const wchar_t* what) {
            keeper->foreignLines.emplace_back(line);
            if (what != nullptr) damage_.push_back({number, what});
        };
        if (line.front() == '#') {
            keep(nullptr);
        } else if (!isUtf8(line)) {
            if (line.front() == '[') current = nullptr;
            keep(L"not UTF-8");
        } else if (line.front() == '[') {
            current =
                line.ends_with(']') ? create(fromUtf8(line.substr(1, line.size() - 2))) : nullptr;
            if (current != nullptr) {
                keeper = current;
            } else {
                keep(L"not a key, root first, in brackets");
            }
        } else if (current == nullptr) {
            keep(L"a value without a key");
        } else if (auto value = parsedValue(line)) {
            setValue(*current, std::move(*value));
        } else {
            keep(L"not a value");
        }
    }
}

std::string RegistryTree::format() const {
    std::string out(kFirstLine);
    out += '\n';
    for (const std::string& line : top_.foreignLines)
        out += line + '\n';
    for (const auto& [name, root] : top_.subkeys) {
        const bool empty =
            root->subkeys.empty() && root->values.empty() && root->foreignLines.empty();
        if (!empty) append(out, *root, root->name);
    }
    return out;
}

}  // namespace sg
