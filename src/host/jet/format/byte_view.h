#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "base/export.h"

// A bounds-checked view of bytes that came from a file. Everything that is read from a page or a
// row is read through one; a read beyond its end throws Error (Damaged) and never touches memory.
namespace sg::jet {

// Throws Error: `size` bytes at `offset` were asked of a view of `available` bytes.
[[noreturn]] SG_API void throwOverrun(size_t offset, size_t size, size_t available);

class ByteView {
  public:
    constexpr ByteView() = default;
    constexpr ByteView(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    constexpr ByteView(std::span<const uint8_t> bytes) : data_(bytes.data()), size_(bytes.size()) {}

    constexpr const uint8_t* data() const { return data_; }
    constexpr size_t size() const { return size_; }
    constexpr bool empty() const { return size_ == 0; }
    constexpr const uint8_t* begin() const { return data_; }
    constexpr const uint8_t* end() const { return data_ + size_; }
    constexpr operator std::span<const uint8_t>() const { return {data_, size_}; }

    // Little-endian numbers at `offset`.
    uint8_t get8(size_t offset) const {
        check(offset, 1);
        return data_[offset];
    }
    uint16_t get16(size_t offset) const { return load<uint16_t>(offset); }
    uint32_t get24(size_t offset) const {
        check(offset, 3);
        return uint32_t(data_[offset]) | uint32_t(data_[offset + 1]) << 8 |
               uint32_t(data_[offset + 2]) << 16;
    }
    uint32_t get32(size_t offset) const { return load<uint32_t>(offset); }
    uint64_t get64(size_t offset) const { return load<uint64_t>(offset); }
    float getFloat(size_t offset) const { return load<float>(offset); }
    double getDouble(size_t offset) const { return load<double>(offset); }

    // Big-endian, as keys and pointers on index pages are stored.
    uint32_t get24Big(size_t offset) const {
        check(offset, 3);
        return uint32_t(data_[offset]) << 16 | uint32_t(data_[offset + 1]) << 8 |
               uint32_t(data_[offset + 2]);
    }
    uint32_t get32Big(size_t offset) const {
        check(offset, 4);
        return uint32_t(data_[offset]) << 24 | get24Big(offset + 1);
    }

    // `size` bytes from `offset` on.
    ByteView sub(size_t offset, size_t size) const {
        check(offset, size);
        return {data_ + offset, size};
    }
    // Everything from `offset` on.
    ByteView from(size_t offset) const {
        check(offset, 0);
        return {data_ + offset, size_ - offset};
    }

  private:
    static_assert(std::endian::native == std::endian::little,
                  "numbers are loaded as they stand in the file");

    void check(size_t offset, size_t size) const {
        if (offset > size_ || size > size_ - offset) {
            throwOverrun(offset, size, size_);
        }
    }

    template <class T>
    T load(size_t offset) const {
        check(offset, sizeof(T));
        T value;
        std::memcpy(&value, data_ + offset, sizeof(T));
        return value;
    }

    const uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

}  // namespace sg::jet
