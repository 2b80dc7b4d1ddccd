#include "host/jet/catalog/properties.h"

#include <algorithm>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/text_codec.h"
#include "host/jet/values/value_codec.h"

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

// --- writing ---

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void put(Bytes& bytes, size_t at, size_t number, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        bytes[at + i] = static_cast<uint8_t>(number >> (8 * i));
    }
}

void append(Bytes& bytes, size_t number, size_t size) {
    bytes.resize(bytes.size() + size);
    put(bytes, bytes.size() - size, number, size);
}

void appendName(Bytes& bytes, const std::wstring& name) {
    Bytes encoded;
    encodeName(name, encoded);
    if (encoded.size() > 2 * longestName) {
        throw Error(InvalidArgument, {},
                    {.detail = L"the name " + name + L" is too long for a property"});
    }
    append(bytes, encoded.size(), 2);
    append(bytes, encoded);
}

// Starts a chunk; endChunk() fills in its length.
size_t beginChunk(Bytes& bytes, uint16_t kind) {
    const size_t start = bytes.size();
    append(bytes, 0, 4);
    append(bytes, kind, 2);
    return start;
}

void endChunk(Bytes& bytes, size_t start) {
    put(bytes, start, bytes.size() - start, 4);
}

// The names of all properties, each once, in the order in which they are first used.
std::vector<std::wstring> collectNames(const std::vector<PropertyBlock>& blocks) {
    std::vector<std::wstring> names;
    for (const PropertyBlock& block : blocks) {
        for (const Property& property : block.properties) {
            if (std::find(names.begin(), names.end(), property.name) == names.end()) {
                names.push_back(property.name);
            }
        }
    }
    return names;
}

// As a column of the property's type encodes it, with no limit to its length.
Bytes encodePropertyValue(const Property& property, const Format& format) {
    Column column;
    column.name = property.name;
    column.type = std::holds_alternative<Guid>(property.value) ? ColumnType::Guid : property.type;
    column.length = 0xffff;
    column.precision = 28;
    if (const auto* truth = std::get_if<bool>(&property.value)) {
        return {static_cast<uint8_t>(*truth ? 1 : 0)};
    }
    Bytes bytes;
    encodeValue(column, property.value, format, bytes);
    return bytes;
}

void appendProperty(Bytes& bytes, const Property& property, size_t name, const Format& format) {
    const Bytes value = encodePropertyValue(property, format);
    const size_t size = valueHead + value.size();
    if (size > 0xffff) {
        throw Error(FieldTooSmall, {property.name},
                    {.detail = L"property " + property.name + L" has " +
                               std::to_wstring(value.size()) + L" bytes"});
    }
    append(bytes, size, 2);
    append(bytes, property.needsDesignRights ? 1 : 0, 1);
    append(bytes, static_cast<uint8_t>(property.type), 1);
    append(bytes, name, 2);
    append(bytes, value.size(), 2);
    append(bytes, value);
}

void appendBlock(Bytes& bytes, const PropertyBlock& block, const std::vector<std::wstring>& names,
                 const Format& format) {
    const size_t start = beginChunk(bytes, block.kind);
    const size_t owner = bytes.size();
    append(bytes, 0, 4);
    appendName(bytes, block.owner);
    put(bytes, owner, bytes.size() - owner, 4);
    for (const Property& property : block.properties) {
        const auto name = std::find(names.begin(), names.end(), property.name);
        appendProperty(bytes, property, static_cast<size_t>(name - names.begin()), format);
    }
    endChunk(bytes, start);
}

// --- finding ---

// The object's own block may carry the object's name.
bool isBlockOf(const PropertyBlock& block, std::wstring_view owner) {
    return owner.empty() ? block.kind != columnBlock
                         : block.kind == columnBlock && equalIgnoringCase(block.owner, owner);
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

Bytes Properties::serialize(const Format& format) const {
    const std::vector<std::wstring> names = collectNames(blocks_);
    Bytes bytes;
    if (names.empty()) {
        return bytes;
    }
    append(bytes, jet4Mark, 4);
    const size_t start = beginChunk(bytes, nameList);
    for (const std::wstring& name : names) {
        appendName(bytes, name);
    }
    endChunk(bytes, start);
    for (const PropertyBlock& block : blocks_) {
        appendBlock(bytes, block, names, format);
    }
    return bytes;
}

const Property* Properties::find(std::wstring_view owner, std::wstring_view name) const {
    for (const PropertyBlock& block : blocks_) {
        if (!isBlockOf(block, owner)) {
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

void Properties::set(std::wstring_view owner, const Property& property) {
    const auto isNamed = [&](const Property& p) {
        return equalIgnoringCase(p.name, property.name);
    };
    for (PropertyBlock& block : blocks_) {
        const auto found = isBlockOf(block, owner) ? std::find_if(block.properties.begin(),
                                                                  block.properties.end(), isNamed)
                                                   : block.properties.end();
        if (found == block.properties.end()) {
            continue;
        }
        if (!isNull(property.value)) {
            *found = property;
            return;
        }
        block.properties.erase(found);
    }
    if (!isNull(property.value)) {
        blockFor(owner).properties.push_back(property);
    }
}

PropertyBlock& Properties::blockFor(std::wstring_view owner) {
    const auto found = std::find_if(blocks_.begin(), blocks_.end(),
                                    [&](const PropertyBlock& b) { return isBlockOf(b, owner); });
    if (found != blocks_.end()) {
        return *found;
    }
    if (owner.empty()) {
        return *blocks_.insert(blocks_.begin(), PropertyBlock{});
    }
    return blocks_.emplace_back(PropertyBlock{std::wstring(owner), columnBlock, {}});
}

void Properties::removeOwner(std::wstring_view owner) {
    std::erase_if(blocks_, [&](const PropertyBlock& block) { return isBlockOf(block, owner); });
}

void Properties::renameOwner(std::wstring_view owner, std::wstring_view newName) {
    for (PropertyBlock& block : blocks_) {
        if (isBlockOf(block, owner)) {
            block.owner = newName;
        }
    }
}

}  // namespace sg::jet
