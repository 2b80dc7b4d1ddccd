#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/export.h"
#include "host/jet/values/value.h"

namespace sg::jet {

// Rows of values in memory, packed: a value takes a byte for its type and as many more as its
// content needs, a text one, two or four for a character, and Nulls at the end of a row nothing.
// Rows are added behind the last one and read in any order; the next row, and the next column of a
// row, are found without a search.
class SG_API PackedRows {
  public:
    size_t size() const { return rowCount_; }
    // Throws RecordTooLarge for a row of 4 GB.
    void append(std::span<const Value> row);
    // Replaces `into`, whose memory is used again. There must be such a row; a column behind those
    // that it was appended with is Null.
    void value(size_t row, size_t column, Value& into) const;

    // Of the values, packed.
    uint64_t contentBytes() const { return contentBytes_; }
    // All that is held for them.
    uint64_t memoryBytes() const;

  private:
    static constexpr size_t groupSize = 16;
    struct Chunk {
        std::unique_ptr<uint8_t[]> bytes;
        uint32_t capacity = 0;
        uint32_t used = 0;
    };
    struct Place {
        uint32_t chunk = 0;
        uint32_t offset = 0;
    };

    Chunk& chunkFor(size_t size);
    void findRow(size_t row) const;
    void enterRow(size_t row, Place place) const;

    std::vector<Chunk> chunks_;  // rows do not reach from one into the next
    std::vector<Place> groups_;  // of every groupSize-th row
    size_t rowCount_ = 0;
    uint64_t contentBytes_ = 0;
    std::vector<uint8_t> scratch_;

    // The value that was asked for last: what is likely to be asked for next is behind it.
    static constexpr size_t none = SIZE_MAX;
    mutable size_t row_ = none;
    mutable Place rowEnd_;
    mutable const uint8_t* start_ = nullptr;  // of the row's values
    mutable const uint8_t* end_ = nullptr;
    mutable size_t column_ = 0;  // that begins at
    mutable const uint8_t* at_ = nullptr;
};

}  // namespace sg::jet
