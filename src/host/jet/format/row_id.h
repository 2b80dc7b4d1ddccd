#pragma once

#include <compare>
#include <cstdint>

namespace sg::jet {

// Where a row is: a data page and an entry of its row directory. A row keeps its id for its life,
// also when it moves to an overflow page.
struct RowId {
    uint32_t page = 0;
    uint16_t row = 0;

    auto operator<=>(const RowId&) const = default;

    // The form that records hold: the row in the low byte, the page in the three above it.
    static constexpr RowId fromPacked(uint32_t packed) {
        return {packed >> 8, static_cast<uint16_t>(packed & 0xff)};
    }
    constexpr uint32_t packed() const { return page << 8 | row; }
};

}  // namespace sg::jet
