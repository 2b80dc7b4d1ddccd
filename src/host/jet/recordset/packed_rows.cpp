#include "host/jet/recordset/packed_rows.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

constexpr size_t smallestChunk = 4096;
constexpr size_t largestChunk = size_t(256) << 10;  // but for a row that is larger
constexpr size_t longestSize = 10;                  // bytes of a packed number of 64 bits

enum class Tag : uint8_t {
    Null,
    False,
    True,
    Byte,
    Integer,
    Long,
    BigInteger,
    Currency,
    Single,
    Double,
    Date,
    Guid,
    Decimal,
    // With their length before them.
    Bytes,
    NarrowText,  // characters up to U+00FF
    Text,        // up to U+FFFF
    WideText,
};

template <class T>
constexpr Tag tagOf = Tag::Null;
template <>
constexpr Tag tagOf<uint8_t> = Tag::Byte;
template <>
constexpr Tag tagOf<int16_t> = Tag::Integer;
template <>
constexpr Tag tagOf<int32_t> = Tag::Long;
template <>
constexpr Tag tagOf<int64_t> = Tag::BigInteger;
template <>
constexpr Tag tagOf<Currency> = Tag::Currency;
template <>
constexpr Tag tagOf<float> = Tag::Single;
template <>
constexpr Tag tagOf<double> = Tag::Double;
template <>
constexpr Tag tagOf<Date> = Tag::Date;
template <>
constexpr Tag tagOf<Guid> = Tag::Guid;
template <>
constexpr Tag tagOf<Decimal> = Tag::Decimal;

// --- packing ---

void putTag(std::vector<uint8_t>& out, Tag tag) {
    out.push_back(static_cast<uint8_t>(tag));
}

// Seven bits a byte, the low ones first; the last byte has its top bit clear.
uint8_t* packSize(uint64_t size, uint8_t* to) {
    for (; size >= 0x80; size >>= 7)
        *to++ = static_cast<uint8_t>(size | 0x80);
    *to++ = static_cast<uint8_t>(size);
    return to;
}

void putSize(std::vector<uint8_t>& out, uint64_t size) {
    uint8_t packed[longestSize];
    out.insert(out.end(), packed, packSize(size, packed));
}

template <class Unit>
void putCharacters(std::vector<uint8_t>& out, Tag tag, const std::wstring& text) {
    putTag(out, tag);
    putSize(out, text.size());
    const size_t start = out.size();
    out.resize(start + text.size() * sizeof(Unit));
    uint8_t* to = out.data() + start;
    for (const wchar_t c : text) {
        const auto unit = static_cast<Unit>(c);
        std::memcpy(to, &unit, sizeof unit);
        to += sizeof unit;
    }
}

void putText(std::vector<uint8_t>& out, const std::wstring& text) {
    uint32_t all = 0;
    for (const wchar_t c : text)
        all |= static_cast<uint32_t>(c);
    if (all <= 0xff) {
        putCharacters<uint8_t>(out, Tag::NarrowText, text);
    } else if (all <= 0xffff) {
        putCharacters<uint16_t>(out, Tag::Text, text);
    } else {
        putCharacters<uint32_t>(out, Tag::WideText, text);
    }
}

void putValue(std::vector<uint8_t>& out, const Value& value) {
    std::visit(
        [&]<class T>(const T& held) {
            if constexpr (std::is_same_v<T, std::monostate>) {
                putTag(out, Tag::Null);
            } else if constexpr (std::is_same_v<T, bool>) {
                putTag(out, held ? Tag::True : Tag::False);
            } else if constexpr (std::is_same_v<T, std::wstring>) {
                putText(out, held);
            } else if constexpr (std::is_same_v<T, Bytes>) {
                putTag(out, Tag::Bytes);
                putSize(out, held.size());
                out.insert(out.end(), held.begin(), held.end());
            } else {
                static_assert(std::is_trivially_copyable_v<T> && tagOf<T> != Tag::Null);
                putTag(out, tagOf<T>);
                const size_t start = out.size();
                out.resize(start + sizeof held);
                std::memcpy(out.data() + start, &held, sizeof held);
            }
        },
        value);
}

// --- unpacking ---

uint64_t takeSize(const uint8_t*& at) {
    uint64_t size = 0;
    for (int shift = 0;; shift += 7) {
        const uint8_t byte = *at++;
        size |= uint64_t(byte & 0x7f) << shift;
        if (byte < 0x80) return size;
    }
}

const uint8_t* behindValue(const uint8_t* at) {
    switch (static_cast<Tag>(*at++)) {
        case Tag::Null:
        case Tag::False:
        case Tag::True:
            return at;
        case Tag::Byte:
            return at + sizeof(uint8_t);
        case Tag::Integer:
            return at + sizeof(int16_t);
        case Tag::Long:
            return at + sizeof(int32_t);
        case Tag::Single:
            return at + sizeof(float);
        case Tag::BigInteger:
        case Tag::Currency:
        case Tag::Double:
        case Tag::Date:
            return at + sizeof(int64_t);
        case Tag::Guid:
            return at + sizeof(Guid);
        case Tag::Decimal:
            return at + sizeof(Decimal);
        case Tag::Bytes:
        case Tag::NarrowText: {
            const uint64_t size = takeSize(at);
            return at + size;
        }
        case Tag::Text: {
            const uint64_t size = takeSize(at);
            return at + size * 2;
        }
        case Tag::WideText: {
            const uint64_t size = takeSize(at);
            return at + size * 4;
        }
    }
    return at;
}

template <class T>
T& hold(Value& value) {
    T* held = std::get_if<T>(&value);
    return held != nullptr ? *held : value.emplace<T>();
}

template <class T>
void take(const uint8_t* at, Value& into) {
    std::memcpy(&hold<T>(into), at, sizeof(T));
}

template <class Unit>
void takeCharacters(const uint8_t* at, Value& into) {
    std::wstring& text = hold<std::wstring>(into);
    text.resize(takeSize(at));
    for (wchar_t& c : text) {
        Unit unit;
        std::memcpy(&unit, at, sizeof unit);
        c = static_cast<wchar_t>(unit);
        at += sizeof unit;
    }
}

void takeValue(const uint8_t* at, Value& into) {
    switch (static_cast<Tag>(*at++)) {
        case Tag::Null:
            into = std::monostate();
            return;
        case Tag::False:
            into = false;
            return;
        case Tag::True:
            into = true;
            return;
        case Tag::Byte:
            return take<uint8_t>(at, into);
        case Tag::Integer:
            return take<int16_t>(at, into);
        case Tag::Long:
            return take<int32_t>(at, into);
        case Tag::BigInteger:
            return take<int64_t>(at, into);
        case Tag::Currency:
            return take<Currency>(at, into);
        case Tag::Single:
            return take<float>(at, into);
        case Tag::Double:
            return take<double>(at, into);
        case Tag::Date:
            return take<Date>(at, into);
        case Tag::Guid:
            return take<Guid>(at, into);
        case Tag::Decimal:
            return take<Decimal>(at, into);
        case Tag::Bytes: {
            const uint64_t size = takeSize(at);
            hold<Bytes>(into).assign(at, at + size);
            return;
        }
        case Tag::NarrowText:
            return takeCharacters<uint8_t>(at, into);
        case Tag::Text:
            return takeCharacters<uint16_t>(at, into);
        case Tag::WideText:
            return takeCharacters<uint32_t>(at, into);
    }
}

}  // namespace

PackedRows::Chunk& PackedRows::chunkFor(size_t size) {
    if (chunks_.empty() || chunks_.back().capacity - chunks_.back().used < size) {
        const size_t usual =
            chunks_.empty() ? smallestChunk
                            : std::min<size_t>(largestChunk, 2 * size_t(chunks_.back().capacity));
        const size_t capacity = std::max(usual, size);
        chunks_.push_back({std::make_unique_for_overwrite<uint8_t[]>(capacity),
                           static_cast<uint32_t>(capacity), 0});
    }
    return chunks_.back();
}

void PackedRows::append(std::span<const Value> row) {
    while (!row.empty() && isNull(row.back()))
        row = row.first(row.size() - 1);
    scratch_.clear();
    for (const Value& value : row)
        putValue(scratch_, value);
    if (scratch_.size() > std::numeric_limits<uint32_t>::max() - longestSize) {
        throw Error(RecordTooLarge);
    }
    uint8_t head[longestSize];
    const auto headSize = static_cast<size_t>(packSize(scratch_.size(), head) - head);
    Chunk& chunk = chunkFor(headSize + scratch_.size());
    if (rowCount_ % groupSize == 0) {
        groups_.push_back({static_cast<uint32_t>(chunks_.size() - 1), chunk.used});
    }
    std::memcpy(chunk.bytes.get() + chunk.used, head, headSize);
    if (!scratch_.empty()) {
        std::memcpy(chunk.bytes.get() + chunk.used + headSize, scratch_.data(), scratch_.size());
    }
    chunk.used += static_cast<uint32_t>(headSize + scratch_.size());
    contentBytes_ += headSize + scratch_.size();
    ++rowCount_;
    // One long row must not cost its length twice for good.
    if (scratch_.capacity() > largestChunk) std::vector<uint8_t>().swap(scratch_);
}

// `place` is the row's, or the end of the chunk before it.
void PackedRows::enterRow(size_t row, Place place) const {
    if (place.offset == chunks_[place.chunk].used) place = {place.chunk + 1, 0};
    const Chunk& chunk = chunks_[place.chunk];
    start_ = chunk.bytes.get() + place.offset;
    const uint64_t size = takeSize(start_);
    end_ = start_ + size;
    rowEnd_ = {place.chunk, static_cast<uint32_t>(end_ - chunk.bytes.get())};
    row_ = row;
    column_ = 0;
    at_ = start_;
}

void PackedRows::findRow(size_t row) const {
    if (row == row_) return;
    if (row_ == none || row != row_ + 1 || row % groupSize == 0) {
        enterRow(row - row % groupSize, groups_[row / groupSize]);
    }
    while (row_ != row)
        enterRow(row_ + 1, rowEnd_);
}

void PackedRows::value(size_t row, size_t column, Value& into) const {
    findRow(row);
    if (column < column_) {
        column_ = 0;
        at_ = start_;
    }
    for (; column_ < column && at_ != end_; ++column_)
        at_ = behindValue(at_);
    if (at_ == end_) {
        into = std::monostate();
    } else {
        takeValue(at_, into);
    }
}

uint64_t PackedRows::memoryBytes() const {
    uint64_t bytes = groups_.capacity() * sizeof(Place) + chunks_.capacity() * sizeof(Chunk) +
                     scratch_.capacity();
    for (const Chunk& chunk : chunks_)
        bytes += chunk.capacity;
    return bytes;
}

}  // namespace sg::jet
