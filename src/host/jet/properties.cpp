#include "host/jet/properties.h"

#include <algorithm>

#include "base/text.h"
#include "host/jet/error.h"
#include "host/jet/text_codec.h"
#include "host/jet/value_codec.h"

namespace sg::jet {
namespace {

constexpr uint32_t jet3Mark = 0x00444B4B;  // "KKD"
constexpr uint32_t jet4Mark = 0x0032524D;  // "MR2"
constexpr uint16_t nameList = 0x0080;
constexpr uint16_t columnBlock = 1;
constexpr size_t chunkHead = 6;     // length, kind
constexpr size_t longestName = 64;  // characters
constexpr size_t valueHead = 8;     // length, flag, type, name, size

// The part of `bytes` that begins at `at` and says its own length, which must be at least
// `smallest`; `at` goes behind it.
ByteView takePart(ByteView bytes, size_t& at, size_t length, size_t smallest) {
    if (length < smallest) {
        throwDamaged(L"a part of a property value is " + std::to_wstring(length) + L" bytes long");
    }
    const ByteView part = bytes.sub(at, length);
    at += length;
    return part;
}

// A name preceded by its size in bytes.
std::wstring takeName(ByteView bytes, size_t& at, const Format& format) {
    const size_t size = bytes.get16(at);
    const ByteView name = bytes.sub(at + 2, size);
    if (size > longestName * (format.wideText ? 2 : 1)) {
        throwDamaged(L"a property value has a name of " + std::to_wstring(size) + L" bytes");
    }
    at += 2 + size;
    return decodeName(name, format);
}

std::vector<std::wstring> readNames(ByteView chunk, const Format& format) {
    std::vector<std::wstring> names;
    for (size_t at = chunkHead; at < chunk.size();) {
        names.push_back(takeName(chunk, at, format));
    }
    return names;
}

// Identifiers are marked as plain binary.
bool isGuid(const Property& property, ByteView data) {
    return property.type == ColumnType::Binary && data.size() == 16 &&
           equalIgnoringCase(property.name, L"GUID");
}

Property readProperty(ByteView record, const std::vector<std::wstring>& names,
                      const Format& format) {
    Property property;
    property.needsDesignRights = record.get8(2) != 0;
    property.type = static_cast<ColumnType>(record.get8(3));
    const size_t name = record.get16(4);
    if (name >= names.size()) {
        throwDamaged(L"a property has name " + std::to_wstring(name) + L" of " +
                     std::to_wstring(names.size()));
    }
    property.name = names[name];
    const ByteView data = record.sub(valueHead, record.get16(6));
    decodeValue(isGuid(property, data) ? ColumnType::Guid : property.type, data, format, 0,
                property.value);
    return property;
}

PropertyBlock readBlock(ByteView chunk, uint16_t kind, const std::vector<std::wstring>& names,
                        const Format& format) {
    PropertyBlock block;
    block.kind = kind;
    if (chunk.size() == chunkHead) {
        return block;
    }
    size_t at = chunkHead;
    const ByteView owner = takePart(chunk, at, chunk.get32(at), 4);
    if (owner.size() > chunkHead) {
        size_t nameAt = 4;
        block.owner = takeName(owner, nameAt, format);
    }
    while (at < chunk.size()) {
        const ByteView record = takePart(chunk, at, chunk.get16(at), valueHead);
        block.properties.push_back(readProperty(record, names, format));
    }
    return block;
}

}  // namespace

Properties Properties::parse(ByteView bytes, const Format& format) {
    Properties result;
    if (bytes.empty()) {
        return result;
    }
    const uint32_t mark = bytes.get32(0);
    if (mark != jet3Mark && mark != jet4Mark) {
        throwDamaged(L"a property value begins with neither of its marks");
    }
    std::vector<std::wstring> names;
    for (size_t at = 4; at < bytes.size();) {
        const uint16_t kind = bytes.get16(at + 4);
        const ByteView chunk = takePart(bytes, at, bytes.get32(at), chunkHead);
        if (kind == nameList) {
            names = readNames(chunk, format);
        } else {
            result.blocks_.push_back(readBlock(chunk, kind, names, format));
        }
    }
    return result;
}

const Property* Properties::find(std::wstring_view owner, std::wstring_view name) const {
    for (const PropertyBlock& block : blocks_) {
        // The object's own block may carry the object's name.
        const bool isOwners =
            owner.empty() ? block.kind != columnBlock
                          : block.kind == columnBlock && equalIgnoringCase(block.owner, owner);
        if (!isOwners) {
            continue;
        }
        for (const Property& property : block.properties) {
            if (equalIgnoringCase(property.name, name)) {
                return &property;
            }
        }
    }
    return nullptr;
}

std::wstring Properties::text(std::wstring_view owner, std::wstring_view name) const {
    const Property* property = find(owner, name);
    const auto* text = property ? std::get_if<std::wstring>(&property->value) : nullptr;
    return text ? *text : std::wstring();
}

bool Properties::flag(std::wstring_view owner, std::wstring_view name) const {
    const Property* property = find(owner, name);
    if (property == nullptr) {
        return false;
    }
    return std::visit(
        [](const auto& value) {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>) {
                return value != 0;
            } else {
                return false;
            }
        },
        property->value);
}

}  // namespace sg::jet
