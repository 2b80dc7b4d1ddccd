#include <algorithm>
#include <array>
#include <cstring>

#include "host/dwg/compression.h"

namespace sg::dwg {
namespace {

// Finds matches by a table of the last places of all runs of four bytes; the nearest one serves.
class Packer {
  public:
    explicit Packer(std::span<const uint8_t> plain) : plain_(plain) {
        packed_.reserve(plain.size() / 2 + 16);
        places_.fill(kNone);
    }

    std::vector<uint8_t> pack() {
        size_t at = kLeast;  // what comes first is never a match
        while (at + kShortest <= plain_.size()) {
            const size_t place = placeOf(at);
            const size_t length = matchAt(place, at);
            const size_t offset = at - place;
            if (length < (offset > kNear ? 5 : offset > kShort ? 4 : kShortest)) {
                ++at;
                continue;
            }
            finish(at);
            begin(length, offset);
            for (size_t inside = at + 1; inside < at + length; inside += 4)
                placeOf(inside);
            at += length;
            literal_ = at;
        }
        finish(plain_.size());
        packed_.push_back(0x11);
        packed_.push_back(0);
        packed_.push_back(0);
        return std::move(packed_);
    }

  private:
    static constexpr size_t kLeast = 4;
    static constexpr size_t kShortest = 4;
    static constexpr size_t kShort = 0x400;  // offsets of the shortest codes
    static constexpr size_t kNear = 0x4000;  // and of the next ones
    static constexpr size_t kFarthest = 0xBFFF;
    static constexpr uint32_t kNone = ~0u;
    static constexpr unsigned kBits = 13;

    uint32_t wordAt(size_t at) const {
        uint32_t word = 0;
        std::memcpy(&word, plain_.data() + at, 4);
        return word;
    }

    // The last place with the same hash, before this one takes it; `at` itself for none.
    size_t placeOf(size_t at) {
        if (at + 4 > plain_.size()) return at;
        uint32_t& place = places_[wordAt(at) * 0x9E3779B1u >> (32 - kBits)];
        const uint32_t before = place;
        place = static_cast<uint32_t>(at);
        return before == kNone ? at : before;
    }

    size_t matchAt(size_t place, size_t at) const {
        if (place == at || at - place > kFarthest || wordAt(place) != wordAt(at)) return 0;
        size_t length = 4;
        while (at + length < plain_.size() && plain_[place + length] == plain_[at + length])
            ++length;
        return length;
    }

    void put(size_t byte) { packed_.push_back(static_cast<uint8_t>(byte)); }

    void longLength(size_t length) {
        for (; length > 0xFF; length -= 0xFF)
            put(0);
        put(length);
    }

    // The literal bytes ahead of `end`. Up to three are counted by the last match.
    void finish(size_t end) {
        const size_t count = end - literal_;
        if (count == 0) return;
        if (count <= 3 && tail_ != 0) {
            packed_[tail_] = static_cast<uint8_t>(packed_[tail_] | count);
        } else if (count <= 18) {
            put(count - 3);
        } else {
            put(0);
            longLength(count - 18);
        }
        const auto from = plain_.begin();
        packed_.insert(packed_.end(), from + static_cast<ptrdiff_t>(literal_),
                       from + static_cast<ptrdiff_t>(end));
    }

    void begin(size_t length, size_t offset) {
        if (offset <= kShort && length <= 14) {
            tail_ = packed_.size();
            put((length + 1) << 4 | ((offset - 1) & 3) << 2);
            put((offset - 1) >> 2);
            return;
        }
        const bool isFar = offset > kNear;
        const size_t mask = isFar ? 7 : 0x1F;
        size_t code = isFar ? 0x10 : 0x20;
        offset -= isFar ? 0x4000 : 1;
        if (isFar) code |= offset >> 11 & 8;
        const bool isLong = length > mask + 2;
        put(code | (isLong ? 0 : length - 2));
        if (isLong) longLength(length - mask - 2);
        tail_ = packed_.size();
        put((offset & 0x3F) << 2);
        put(offset >> 6 & 0xFF);
    }

    std::span<const uint8_t> plain_;
    std::vector<uint8_t> packed_;
    std::array<uint32_t, 1u << kBits> places_{};
    size_t literal_ = 0;  // where the bytes begin that are not packed yet
    size_t tail_ = 0;     // the byte of the last match that counts literal ones; 0 before the first
};

}  // namespace

// There is no code for less than four bytes; who unpacks them knows how many there are.
std::vector<uint8_t> pack2004(std::span<const uint8_t> plain) {
    std::array<uint8_t, 4> few{};
    if (plain.empty() || plain.size() >= few.size()) return Packer(plain).pack();
    std::copy(plain.begin(), plain.end(), few.begin());
    return Packer(few).pack();
}

}  // namespace sg::dwg
