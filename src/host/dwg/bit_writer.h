#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"

namespace sg::dwg {

// Writes what BitReader reads to the end of a row of bits. Numbers take their shortest form.
class BitWriter {
  public:
    void clear() {
        bytes_.clear();
        pending_ = 0;
        free_ = 8;
    }
    size_t position() const { return bytes_.size() * 8 + (8 - free_); }  // the bits written
    bool isEmpty() const { return position() == 0; }

    // Up to 32 bits of a number, the highest first.
    void bits(uint32_t value, unsigned count) {
        while (count != 0) {
            const unsigned now = count < free_ ? count : free_;
            count -= now;
            free_ -= now;
            const uint32_t part = value >> count & ((1u << now) - 1);
            pending_ = static_cast<uint8_t>(pending_ | part << free_);
            if (free_ == 0) flush();
        }
    }

    void bit(bool value) { bits(value ? 1 : 0, 1); }   // B
    void bit2(unsigned value) { bits(value & 3, 2); }  // BB
    void bit3(unsigned value);                         // 3B
    void rawChar(uint8_t value) {                      // RC
        if (free_ == 8) {
            bytes_.push_back(value);
        } else {
            bits(value, 8);
        }
    }
    void rawShort(uint16_t value);                                                 // RS
    void rawLong(uint32_t value);                                                  // RL
    void rawLongLong(uint64_t value);                                              // RLL
    void rawDouble(double value) { rawLongLong(std::bit_cast<uint64_t>(value)); }  // RD
    void bitShort(int16_t value);                                                  // BS
    void bitLong(int32_t value);                                                   // BL
    void bitLongLong(uint64_t value);                                              // BLL
    void bitDouble(double value);                                                  // BD
    void doubleWithDefault(double value, double standard);                         // DD
    void point3d(const AcGePoint3d& value);                                        // 3BD
    void rawPoint2d(const AcGePoint2d& value);                                     // 2RD
    void handle(unsigned code, uint64_t value);                                    // H
    void modularChar(int64_t value);                                               // MC
    void unsignedModularChar(uint64_t value);                                      // UMC
    void modularShort(uint32_t value);                                             // MS, below 2^30
    void objectType(uint16_t value);                                               // OT
    void rawBytes(const void* bytes, size_t count);
    void rawBytes(std::string_view bytes) { rawBytes(bytes.data(), bytes.size()); }
    // The first `count` bits of these bytes.
    void bitsOf(std::span<const uint8_t> bytes, size_t count);

    // Fills the last byte with zeros.
    void align() {
        if (free_ != 8) flush();
    }
    // All bits, which end at a byte's end.
    const std::vector<uint8_t>& bytes() {
        align();
        return bytes_;
    }
    // Puts a number where one was written that was not known then, at any bit.
    void patchLongAt(size_t bit, uint32_t value);

  private:
    void flush() {
        bytes_.push_back(pending_);
        pending_ = 0;
        free_ = 8;
    }

    std::vector<uint8_t> bytes_;
    uint8_t pending_ = 0;
    unsigned free_ = 8;  // bits of the pending byte; never 0
};

}  // namespace sg::dwg
