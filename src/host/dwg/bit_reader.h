#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

namespace sg::dwg {

// A handle as it stands in a file: what kind of reference it is, or how it lies to the handle of
// the object that has it, and the number.
struct FileHandle {
    uint8_t code = 0;
    uint64_t value = 0;

    // The handle that is meant in an object of the handle `own`.
    uint64_t resolved(uint64_t own) const {
        switch (code) {
            case 6:
                return own + 1;
            case 8:
                return own - 1;
            case 10:
                return own + value;
            case 12:
                return own - value;
            default:
                return value;
        }
    }
};

// Reads the codings of drawing files from a row of bits, the highest of a byte first (see
// docs/formats/dwg.md). Nothing is read past the end: what would be there reads as zero, and the
// reader has failed from then on.
class BitReader {
  public:
    BitReader() = default;
    explicit BitReader(std::span<const uint8_t> bytes) : BitReader(bytes, 0, bytes.size() * 8) {}
    // Of `bytes` the bits from `begin` up to `end`; positions count from the first of `bytes`.
    BitReader(std::span<const uint8_t> bytes, size_t begin, size_t end)
        : bytes_(bytes), at_(begin), end_(end) {
        if (end_ > bytes_.size() * 8) end_ = bytes_.size() * 8;
        if (at_ > end_) fail();
    }

    bool hasFailed() const { return hasFailed_; }
    size_t position() const { return at_; }
    size_t end() const { return end_; }
    size_t left() const { return end_ - at_; }  // bits
    void seek(size_t position) {
        at_ = position;
        if (at_ > end_) fail();
    }
    void skip(size_t bits) {
        if (bits > left()) return fail();
        at_ += bits;
    }
    std::span<const uint8_t> bytes() const { return bytes_; }

    // Up to 32 bits as a number, the first the highest.
    uint32_t bits(unsigned count) {
        if (count > left()) {
            fail();
            return 0;
        }
        const uint32_t value = peek(count);
        at_ += count;
        return value;
    }

    bool bit() { return bits(1) != 0; }                                  // B
    uint8_t bit2() { return static_cast<uint8_t>(bits(2)); }             // BB
    uint8_t bit3();                                                      // 3B
    uint8_t rawChar() { return static_cast<uint8_t>(bits(8)); }          // RC
    uint16_t rawShort();                                                 // RS
    uint32_t rawLong();                                                  // RL
    uint64_t rawLongLong();                                              // RLL
    double rawDouble() { return std::bit_cast<double>(rawLongLong()); }  // RD
    int16_t bitShort();                                                  // BS
    int32_t bitLong();                                                   // BL
    uint64_t bitLongLong();                                              // BLL
    double bitDouble();                                                  // BD
    double doubleWithDefault(double standard);                           // DD
    AcGePoint3d point3d();                                               // 3BD
    AcGePoint2d rawPoint2d();                                            // 2RD
    FileHandle handle();                                                 // H
    int64_t modularChar();                                               // MC
    uint64_t unsignedModularChar();                                      // UMC
    uint32_t modularShort();                                             // MS
    uint16_t objectType();                                               // OT

    // As many bytes; all zero when there are not so many.
    void rawBytes(void* bytes, size_t count);
    std::string rawBytes(size_t count);  // empty when there are not so many

  private:
    void fail() {
        hasFailed_ = true;
        at_ = end_;
    }
    // The bits are there.
    uint32_t peek(unsigned count) const {
        if (count == 0) return 0;
        const size_t byte = at_ / 8;
        uint64_t window = 0;
        if (byte + 8 <= bytes_.size()) {
            std::memcpy(&window, bytes_.data() + byte, 8);
            window = __builtin_bswap64(window);
        } else {
            for (size_t i = 0; i < 8; ++i) {
                window = window << 8 | (byte + i < bytes_.size() ? bytes_[byte + i] : 0u);
            }
        }
        return static_cast<uint32_t>(window << (at_ % 8) >> (64 - count));
    }

    std::span<const uint8_t> bytes_;
    size_t at_ = 0;
    size_t end_ = 0;  // at_ is never behind it
    bool hasFailed_ = false;
};

}  // namespace sg::dwg
