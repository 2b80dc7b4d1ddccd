#include "host/dwg/bit_reader.h"

namespace sg::dwg {

uint8_t BitReader::bit3() {
    if (!bit()) return 0;
    if (!bit()) return 2;
    return bit() ? 7 : 6;
}

uint16_t BitReader::rawShort() {
    return __builtin_bswap16(static_cast<uint16_t>(bits(16)));
}

uint32_t BitReader::rawLong() {
    return __builtin_bswap32(bits(32));
}

uint64_t BitReader::rawLongLong() {
    const uint64_t low = rawLong();
    return low | static_cast<uint64_t>(rawLong()) << 32;
}

int16_t BitReader::bitShort() {
    switch (bits(2)) {
        case 0:
            return static_cast<int16_t>(rawShort());
        case 1:
            return rawChar();
        case 2:
            return 0;
        default:
            return 256;
    }
}

int32_t BitReader::bitLong() {
    switch (bits(2)) {
        case 0:
            return static_cast<int32_t>(rawLong());
        case 1:
            return rawChar();
        default:
            return 0;
    }
}

uint64_t BitReader::bitLongLong() {
    const unsigned count = bits(3);
    uint64_t value = 0;
    for (unsigned i = 0; i < count; ++i)
        value |= static_cast<uint64_t>(rawChar()) << (8 * i);
    return value;
}

double BitReader::bitDouble() {
    switch (bits(2)) {
        case 0:
            return rawDouble();
        case 1:
            return 1.0;
        default:
            return 0.0;
    }
}

// The lower half of the number, or three quarters of it, replace those of the default.
double BitReader::doubleWithDefault(double standard) {
    auto number = std::bit_cast<uint64_t>(standard);
    switch (bits(2)) {
        case 0:
            return standard;
        case 1:
            number = (number & 0xFFFFFFFF00000000u) | rawLong();
            return std::bit_cast<double>(number);
        case 2: {
            const uint64_t middle = rawShort();
            number = (number & 0xFFFF000000000000u) | middle << 32 | rawLong();
            return std::bit_cast<double>(number);
        }
        default:
            return rawDouble();
    }
}

AcGePoint3d BitReader::point3d() {
    const double x = bitDouble();
    const double y = bitDouble();
    return {x, y, bitDouble()};
}

AcGePoint2d BitReader::rawPoint2d() {
    const double x = rawDouble();
    return {x, rawDouble()};
}

FileHandle BitReader::handle() {
    FileHandle handle;
    handle.code = static_cast<uint8_t>(bits(4));
    unsigned count = bits(4);
    if (count > 8) {
        fail();
        return {};
    }
    while (count-- > 0)
        handle.value = handle.value << 8 | rawChar();
    return handle;
}

int64_t BitReader::modularChar() {
    uint64_t value = 0;
    for (unsigned shift = 0; shift < 63; shift += 7) {
        const uint8_t byte = rawChar();
        if ((byte & 0x80) != 0) {
            value |= static_cast<uint64_t>(byte & 0x7F) << shift;
            continue;
        }
        value |= static_cast<uint64_t>(byte & 0x3F) << shift;
        const auto number = static_cast<int64_t>(value);
        return (byte & 0x40) != 0 ? -number : number;
    }
    fail();
    return 0;
}

uint64_t BitReader::unsignedModularChar() {
    uint64_t value = 0;
    for (unsigned shift = 0; shift < 63; shift += 7) {
        const uint8_t byte = rawChar();
        value |= static_cast<uint64_t>(byte & 0x7F) << shift;
        if ((byte & 0x80) == 0) return value;
    }
    fail();
    return 0;
}

uint32_t BitReader::modularShort() {
    const uint32_t low = rawShort();
    if ((low & 0x8000) == 0) return low;
    const uint32_t high = rawShort();
    if ((high & 0x8000) != 0) {
        fail();
        return 0;
    }
    return (low & 0x7FFF) | high << 15;
}

uint16_t BitReader::objectType() {
    switch (bits(2)) {
        case 0:
            return rawChar();
        case 1:
            return static_cast<uint16_t>(rawChar() + 0x1F0);
        default:
            return rawShort();
    }
}

void BitReader::rawBytes(void* bytes, size_t count) {
    auto* const to = static_cast<uint8_t*>(bytes);
    if (count > left() / 8) {
        if (count != 0) std::memset(to, 0, count);
        return fail();
    }
    if (at_ % 8 == 0) {
        if (count != 0) std::memcpy(to, bytes_.data() + at_ / 8, count);
        at_ += count * 8;
        return;
    }
    for (size_t i = 0; i < count; ++i)
        to[i] = rawChar();
}

std::string BitReader::rawBytes(size_t count) {
    if (count > left() / 8) {
        fail();
        return {};
    }
    std::string bytes(count, '\0');
    rawBytes(bytes.data(), count);
    return bytes;
}

}  // namespace sg::dwg
