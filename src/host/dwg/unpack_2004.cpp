#include <algorithm>

#include "host/dwg/compression.h"

namespace sg::dwg {
namespace {

class Unpacker {
  public:
    Unpacker(std::span<const uint8_t> packed, size_t size) : packed_(packed), size_(size) {
        // A packed byte stands for 255 at most, so that no more is set aside than can come.
        plain_.reserve(std::min(size, packed.size() * 255));
    }

    std::optional<std::vector<uint8_t>> unpack() {
        uint8_t code = next();
        if ((code & 0xF0) == 0) code = literal(literalLength(code));
        while (isGood_ && code != kEnd && plain_.size() < size_) {
            code = match(code);
        }
        if (!isGood_) return std::nullopt;
        return std::move(plain_);
    }

  private:
    static constexpr uint8_t kEnd = 0x11;

    uint8_t next() {
        if (at_ < packed_.size()) return packed_[at_++];
        if (isPast_) isGood_ = false;
        isPast_ = true;
        return kEnd;
    }

    // A length that does not fit its code goes on in zeros, 255 each, and a last byte.
    size_t longLength(size_t base) {
        size_t length = base;
        uint8_t byte = next();
        while (byte == 0 && at_ < packed_.size()) {
            length += 0xFF;
            byte = next();
        }
        return length + byte;
    }

    size_t literalLength(uint8_t code) {
        const size_t length = code & 0xF;
        return (length == 0 ? longLength(0xF) : length) + 3;
    }

    // Answers the code behind the bytes.
    uint8_t literal(size_t length) {
        length = std::min(length, size_ - plain_.size());
        if (length > packed_.size() - at_) {
            isGood_ = false;
            return kEnd;
        }
        const auto from = packed_.begin() + static_cast<ptrdiff_t>(at_);
        plain_.insert(plain_.end(), from, from + static_cast<ptrdiff_t>(length));
        at_ += length;
        return next();
    }

    void copy(size_t length, size_t offset) {
        if (offset > plain_.size()) {
            isGood_ = false;
            return;
        }
        length = std::min(length, size_ - plain_.size());
        size_t from = plain_.size() - offset;
        while (length-- > 0)
            plain_.push_back(plain_[from++]);
    }

    // What a code says, and the literal bytes behind it. Answers the next code.
    uint8_t match(uint8_t code) {
        size_t length = 0;
        size_t offset = 0;
        uint8_t tail = code;  // its lowest bits count the literal bytes
        if (code < 0x10 || code >= 0x40) {
            length = static_cast<size_t>(code >> 4) - 1;
            offset = (static_cast<size_t>(code >> 2 & 3) | static_cast<size_t>(next()) << 2) + 1;
            if (code < 0x10) isGood_ = false;
        } else {
            const bool isFar = code < 0x20;
            const uint8_t mask = isFar ? 7 : 0x1F;
            length = code & mask;
            if (length == 0) length = longLength(mask);
            length += 2;
            if (isFar) offset = static_cast<size_t>(code & 8) << 11;
            tail = next();
            offset |= static_cast<size_t>(tail >> 2) | static_cast<size_t>(next()) << 6;
            offset += isFar ? 0x4000 : 1;
        }
        if (!isGood_) return kEnd;
        copy(length, offset);
        if (!isGood_) return kEnd;
        if ((tail & 3) != 0) return literal(tail & 3);
        code = next();
        return (code & 0xF0) == 0 ? literal(literalLength(code)) : code;
    }

    std::span<const uint8_t> packed_;
    size_t size_;
    size_t at_ = 0;
    std::vector<uint8_t> plain_;
    bool isGood_ = true;
    bool isPast_ = false;
};

}  // namespace

std::optional<std::vector<uint8_t>> unpack2004(std::span<const uint8_t> packed, size_t size) {
    return Unpacker(packed, size).unpack();
}

}  // namespace sg::dwg
