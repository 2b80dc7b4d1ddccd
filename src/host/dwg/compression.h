#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace sg::dwg {

// The packing of pages from release 2004 on, and that of release 2007; both are of the family of
// LZ77 (docs/formats/dwg.md has their codes).

// At most `size` bytes come out; nullopt when what is there is not packed so. Fewer come out where
// the packed bytes end before.
std::optional<std::vector<uint8_t>> unpack2004(std::span<const uint8_t> packed, size_t size);
std::optional<std::vector<uint8_t>> unpack2007(std::span<const uint8_t> packed, size_t size);

// What unpack2004 unpacks.
std::vector<uint8_t> pack2004(std::span<const uint8_t> plain);

}  // namespace sg::dwg
