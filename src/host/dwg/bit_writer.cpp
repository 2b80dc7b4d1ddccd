#include "host/dwg/bit_writer.h"

namespace sg::dwg {

void BitWriter::bit3(unsigned value) {
    switch (value) {
        case 0:
            return bits(0, 1);
        case 2:
            return bits(2, 2);
        case 6:
            return bits(6, 3);
        default:
            return bits(7, 3);
    }
}

void BitWriter::rawShort(uint16_t value) {
    rawChar(static_cast<uint8_t>(value));
    rawChar(static_cast<uint8_t>(value >> 8));
}

void BitWriter::rawLong(uint32_t value) {
    if (free_ != 8) return bits(__builtin_bswap32(value), 32);
    const size_t size = bytes_.size();
    bytes_.resize(size + 4);
    for (unsigned i = 0; i < 4; ++i)
        bytes_[size + i] = static_cast<uint8_t>(value >> (8 * i));
}

void BitWriter::rawLongLong(uint64_t value) {
    rawLong(static_cast<uint32_t>(value));
    rawLong(static_cast<uint32_t>(value >> 32));
}

void BitWriter::bitShort(int16_t value) {
    if (value == 0) return bits(2, 2);
    if (value == 256) return bits(3, 2);
    if (value > 0 && value < 256) return bits(0x100u | static_cast<uint32_t>(value), 10);
    bits(0, 2);
    rawShort(static_cast<uint16_t>(value));
}

void BitWriter::bitLong(int32_t value) {
    if (value == 0) return bits(2, 2);
    if (value > 0 && value < 256) return bits(0x100u | static_cast<uint32_t>(value), 10);
    bits(0, 2);
    rawLong(static_cast<uint32_t>(value));
}

// A count of three bits does not reach eight bytes, so that the highest byte is left out.
void BitWriter::bitLongLong(uint64_t value) {
    unsigned count = 0;
    while (count < 7 && value >> (8 * count) != 0)
        ++count;
    bits(count, 3);
    for (unsigned i = 0; i < count; ++i)
        rawChar(static_cast<uint8_t>(value >> (8 * i)));
}

// A negative zero is no plain one.
void BitWriter::bitDouble(double value) {
    const auto number = std::bit_cast<uint64_t>(value);
    if (number == 0) return bits(2, 2);
    if (number == std::bit_cast<uint64_t>(1.0)) return bits(1, 2);
    bits(0, 2);
    rawLongLong(number);
}

void BitWriter::doubleWithDefault(double value, double standard) {
    const auto number = std::bit_cast<uint64_t>(value);
    const uint64_t difference = number ^ std::bit_cast<uint64_t>(standard);
    if (difference == 0) return bits(0, 2);
    if (difference >> 32 == 0) {
        bits(1, 2);
        rawLong(static_cast<uint32_t>(number));
    } else if (difference >> 48 == 0) {
        bits(2, 2);
        rawShort(static_cast<uint16_t>(number >> 32));
        rawLong(static_cast<uint32_t>(number));
    } else {
        bits(3, 2);
        rawLongLong(number);
    }
}

void BitWriter::point3d(const AcGePoint3d& value) {
    bitDouble(value.x);
    bitDouble(value.y);
    bitDouble(value.z);
}

void BitWriter::rawPoint2d(const AcGePoint2d& value) {
    rawDouble(value.x);
    rawDouble(value.y);
}

void BitWriter::handle(unsigned code, uint64_t value) {
    unsigned count = 0;
    while (count < 8 && value >> (8 * count) != 0)
        ++count;
    rawChar(static_cast<uint8_t>(code << 4 | count));
    while (count-- > 0)
        rawChar(static_cast<uint8_t>(value >> (8 * count)));
}

void BitWriter::modularChar(int64_t value) {
    uint64_t number = static_cast<uint64_t>(value < 0 ? -value : value);
    while (number > 0x3F) {
        rawChar(static_cast<uint8_t>(0x80 | (number & 0x7F)));
        number >>= 7;
    }
    rawChar(static_cast<uint8_t>(number | (value < 0 ? 0x40 : 0)));
}

void BitWriter::unsignedModularChar(uint64_t value) {
    while (value > 0x7F) {
        rawChar(static_cast<uint8_t>(0x80 | (value & 0x7F)));
        value >>= 7;
    }
    rawChar(static_cast<uint8_t>(value));
}

void BitWriter::modularShort(uint32_t value) {
    if (value < 0x8000) return rawShort(static_cast<uint16_t>(value));
    rawShort(static_cast<uint16_t>(0x8000 | (value & 0x7FFF)));
    rawShort(static_cast<uint16_t>(value >> 15 & 0x7FFF));
}

void BitWriter::objectType(uint16_t value) {
    if (value < 0x100) {
        bits(0, 2);
        rawChar(static_cast<uint8_t>(value));
    } else if (value >= 0x1F0 && value < 0x2F0) {
        bits(1, 2);
        rawChar(static_cast<uint8_t>(value - 0x1F0));
    } else {
        bits(2, 2);
        rawShort(value);
    }
}

void BitWriter::rawBytes(const void* bytes, size_t count) {
    const auto* const from = static_cast<const uint8_t*>(bytes);
    if (free_ == 8) {
        bytes_.insert(bytes_.end(), from, from + count);
        return;
    }
    for (size_t i = 0; i < count; ++i)
        bits(from[i], 8);
}

void BitWriter::bitsOf(std::span<const uint8_t> bytes, size_t count) {
    rawBytes(bytes.data(), count / 8);
    const auto rest = static_cast<unsigned>(count % 8);
    if (rest != 0) bits(bytes[count / 8] >> (8u - rest), rest);
}

void BitWriter::patchLongAt(size_t bit, uint32_t value) {
    for (unsigned i = 0; i < 32; ++i, ++bit) {
        const unsigned from = i / 8 * 8 + 7 - i % 8;  // the file has the lowest byte first
        const auto mask = static_cast<uint8_t>(0x80u >> (bit % 8));
        uint8_t& byte = bit / 8 < bytes_.size() ? bytes_[bit / 8] : pending_;
        byte = static_cast<uint8_t>((value >> from & 1) != 0 ? byte | mask : byte & ~mask);
    }
}

}  // namespace sg::dwg
