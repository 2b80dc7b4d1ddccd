#include <algorithm>

#include "host/dwg/compression.h"

namespace sg::dwg {
namespace {

// Runs of literal bytes are not in their order: groups of 32 have their halves exchanged, and what
// is left over stands as the table tells, from the packed run's end to its start. Each row gives
// the sizes of the pieces in the order in which they come out.
struct Pieces {
    uint8_t sizes[7];  // 0: no more
};
constexpr Pieces kPieces[32] = {
    {{0}},
    {{1}},
    {{1, 1}},
    {{1, 1, 1}},
    {{4}},
    {{1, 4}},
    {{1, 4, 1}},
    {{1, 1, 4, 1}},
    {{8}},
    {{1, 8}},
    {{1, 8, 1}},
    {{1, 1, 8, 1}},
    {{4, 8}},
    {{1, 4, 8}},
    {{1, 4, 8, 1}},
    {{1, 1, 4, 8, 1}},
    {{8, 8}},
    {{8, 1, 8}},
    {{1, 8, 8, 1}},
    {{1, 1, 1, 8, 8}},
    {{4, 8, 8}},
    {{1, 4, 8, 8}},
    {{1, 1, 4, 8, 8}},
    {{1, 1, 1, 4, 8, 8}},
    {{8, 8, 8}},
    {{8, 1, 8, 8}},
    {{1, 8, 1, 8, 8}},
    {{1, 1, 8, 1, 8, 8}},
    {{4, 8, 8, 8}},
    {{1, 4, 8, 8, 8}},
    {{1, 1, 4, 8, 8, 8}},
    {{1, 4, 8, 8, 8, 1, 1}},
};

class Unpacker {
  public:
    Unpacker(std::span<const uint8_t> packed, size_t size) : packed_(packed), size_(size) {
        plain_.reserve(std::min(size, packed.size() * 255));
    }

    std::optional<std::vector<uint8_t>> unpack() {
        code_ = next();
        size_t length = 0;
        if ((code_ & 0xF0) == 0x20) {
            at_ += 2;
            length = next() & 7;
            if (length == 0) return std::nullopt;
        }
        while (isGood_ && at_ < packed_.size() && plain_.size() < size_) {
            if (length == 0) length = literalLength();
            literal(length);
            length = 0;
            if (!isGood_ || at_ >= packed_.size()) break;
            code_ = next();
            readMatch();
            length = copyMatches();
        }
        if (!isGood_) return std::nullopt;
        return std::move(plain_);
    }

  private:
    uint8_t next() {
        if (at_ < packed_.size()) return packed_[at_++];
        isGood_ = false;
        return 0;
    }

    size_t literalLength() {
        size_t length = static_cast<size_t>(code_) + 8;
        if (length != 0x17) return length;
        size_t more = next();
        length += more;
        if (more != 0xFF) return length;
        do {
            more = next();
            more |= static_cast<size_t>(next()) << 8;
            length += more;
        } while (more == 0xFFFF && isGood_);
        return length;
    }

    void piece(size_t from, size_t size) {
        const auto start = packed_.begin() + static_cast<ptrdiff_t>(from);
        plain_.insert(plain_.end(), start, start + static_cast<ptrdiff_t>(size));
    }

    void literal(size_t length) {
        if (length > packed_.size() - std::min(at_, packed_.size()) ||
            length > size_ - plain_.size()) {
            isGood_ = false;
            return;
        }
        size_t from = at_;
        at_ += length;
        for (; length >= 32; length -= 32, from += 32) {
            for (const size_t quarter : {24, 16, 8, 0})
                piece(from + quarter, 8);
        }
        size_t end = from + length;
        for (const uint8_t size : kPieces[length].sizes) {
            if (size == 0) break;
            end -= size;
            piece(end, size);
        }
    }

    // Sets length_ and offset_; the code that is left counts the literal bytes behind.
    void readMatch() {
        const size_t code = code_;
        switch (code >> 4) {
            case 0: {
                const size_t low = next();
                code_ = next();
                length_ = (code & 0xF) + 0x13 + (code_ >> 3 & 0x10);
                offset_ = (static_cast<size_t>(code_ & 0x78) << 5) + 1 + low;
                return;
            }
            case 1: {
                const size_t low = next();
                code_ = next();
                length_ = (code & 0xF) + 3;
                offset_ = (static_cast<size_t>(code_ & 0xF8) << 5) + 1 + low;
                return;
            }
            case 2:
                return readLongMatch(code);
            default:
                code_ = next();
                length_ = code >> 4;
                offset_ = (static_cast<size_t>(code_ & 0xF8) << 1) + (code & 15) + 1;
        }
    }

    void readLongMatch(size_t code) {
        offset_ = next();
        offset_ |= static_cast<size_t>(next()) << 8;
        length_ = code & 7;
        if ((code & 8) == 0) {
            code_ = next();
            length_ += code_ & 0xF8;
            return;
        }
        ++offset_;
        length_ += static_cast<size_t>(next()) << 3;
        code_ = next();
        length_ += (static_cast<size_t>(code_ & 0xF8) << 8) + 0x100;
    }

    // Answers how many literal bytes follow; 0 when their count has a code of its own.
    size_t copyMatches() {
        while (isGood_) {
            if (offset_ > plain_.size() || offset_ == 0 || length_ > size_ - plain_.size()) {
                isGood_ = false;
                return 0;
            }
            for (size_t from = plain_.size() - offset_; length_ > 0; --length_)
                plain_.push_back(plain_[from++]);
            const size_t literals = code_ & 7;
            if (literals != 0 || at_ >= packed_.size()) return literals;
            code_ = next();
            if (code_ >> 4 == 0) return 0;
            if (code_ >> 4 == 0xF) code_ &= 0xF;
            readMatch();
        }
        return 0;
    }

    std::span<const uint8_t> packed_;
    size_t size_;
    size_t at_ = 0;
    std::vector<uint8_t> plain_;
    uint8_t code_ = 0;
    size_t length_ = 0, offset_ = 0;
    bool isGood_ = true;
};

}  // namespace

std::optional<std::vector<uint8_t>> unpack2007(std::span<const uint8_t> packed, size_t size) {
    return Unpacker(packed, size).unpack();
}

}  // namespace sg::dwg
