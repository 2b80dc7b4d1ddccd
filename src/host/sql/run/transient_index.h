#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "host/jet/pages/table.h"

namespace sg::sql {

// Finds the rows of a table that may have certain values in some of its columns, where no index
// does. It holds the rows' ids alone, for as long as a statement runs.
class TransientIndex {
  public:
    // Of all rows as they are now; rows with a Null in one of the columns are left out. `passRow`
    // is called for each, and may throw.
    TransientIndex(const jet::Table& table, std::span<const size_t> columns,
                   const std::function<void()>& passRow);

    // Candidates for values of this hash (HashOfValues), in the order of the file: all that have
    // the values, and few others.
    std::span<const uint32_t> find(uint64_t hash) const;

  private:
    std::vector<uint32_t> starts_;  // by the hash's low bits, and the end
    std::vector<uint32_t> rows_;    // packed ids
    uint64_t mask_ = 0;
};

// Of several values together.
class HashOfValues {
  public:
    void add(uint64_t hash) {
        hash_ = (hash_ ^ hash) * 0x9e3779b97f4a7c15u;
        hash_ ^= hash_ >> 32;
    }
    uint64_t value() const { return hash_; }

  private:
    uint64_t hash_ = 0;
};

}  // namespace sg::sql
