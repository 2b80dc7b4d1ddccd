#include "host/system/registry_bytes.h"

#include <string>

#include "base/encoding.h"
#include "platform/win/registry.h"

namespace sg {
namespace {

using Bytes = std::vector<uint8_t>;

void append(Bytes& bytes, std::u16string_view units) {
    for (const char16_t unit : units) {
        bytes.push_back(static_cast<uint8_t>(unit));
        bytes.push_back(static_cast<uint8_t>(unit >> 8));
    }
}

void appendText(Bytes& bytes, const std::wstring& text) {
    append(bytes, toUtf16(text));
    append(bytes, {u"\0", 1});
}

// The units in front of the zero that must be the last one.
bool unitsOf(const Bytes& bytes, std::u16string& units) {
    if (bytes.size() % 2 != 0 || bytes.size() < 2) return false;
    for (size_t i = 0; i < bytes.size(); i += 2)
        units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    if (units.back() != 0) return false;
    units.pop_back();
    return true;
}

RegistryData textOf(uint32_t type, const Bytes& bytes) {
    std::u16string units;
    if (!unitsOf(bytes, units) || units.find(u'\0') != std::u16string::npos)
        return RegistryRaw{type, bytes};
    return RegistryText{fromUtf16(units), type == REG_EXPAND_SZ};
}

RegistryData textsOf(const Bytes& bytes) {
    std::u16string units;
    if (!unitsOf(bytes, units) || (!units.empty() && units.back() != 0))
        return RegistryRaw{REG_MULTI_SZ, bytes};
    std::vector<std::wstring> texts;
    for (size_t start = 0; start < units.size();) {
        const size_t end = units.find(u'\0', start);
        texts.push_back(fromUtf16(std::u16string_view(units).substr(start, end - start)));
        start = end + 1;
    }
    return texts;
}

RegistryData numberOf(const Bytes& bytes) {
    if (bytes.size() != 4) return RegistryRaw{REG_DWORD, bytes};
    return static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) |
           static_cast<uint32_t>(bytes[3]) << 24;
}

}  // namespace

RegistryData registryDataOf(uint32_t type, const Bytes& bytes) {
    RegistryData data = RegistryRaw{type, bytes};
    if (type == REG_SZ || type == REG_EXPAND_SZ) data = textOf(type, bytes);
    if (type == REG_BINARY) data = bytes;
    if (type == REG_DWORD) data = numberOf(bytes);
    if (type == REG_MULTI_SZ) data = textsOf(bytes);
    // Half of a surrogate pair has no place in a text.
    const RegistryRaw back = registryBytesOf(data);
    return back.bytes == bytes ? data : RegistryRaw{type, bytes};
}

RegistryRaw registryBytesOf(const RegistryData& data) {
    RegistryRaw out;
    if (const auto* const text = std::get_if<RegistryText>(&data)) {
        out.type = text->expandable ? REG_EXPAND_SZ : REG_SZ;
        appendText(out.bytes, text->text);
    } else if (const auto* const number = std::get_if<uint32_t>(&data)) {
        out.type = REG_DWORD;
        for (int shift = 0; shift < 32; shift += 8)
            out.bytes.push_back(static_cast<uint8_t>(*number >> shift));
    } else if (const auto* const bytes = std::get_if<Bytes>(&data)) {
        out = {REG_BINARY, *bytes};
    } else if (const auto* const texts = std::get_if<std::vector<std::wstring>>(&data)) {
        out.type = REG_MULTI_SZ;
        for (const std::wstring& text : *texts)
            appendText(out.bytes, text);
        append(out.bytes, {u"\0", 1});
    } else {
        out = std::get<RegistryRaw>(data);
    }
    return out;
}

}  // namespace sg
