#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace sg::dwg {

// The check number of sections and objects: CRC-16 of the reflected polynomial 0xA001. Sections and
// objects begin it with kSectionSeed.
uint16_t crc16(uint16_t seed, std::span<const uint8_t> bytes);
constexpr uint16_t kSectionSeed = 0xC0C1;

// CRC-32 as zip files have it, begun with `seed`.
uint32_t crc32(uint32_t seed, std::span<const uint8_t> bytes);

// The check number of pages from release 2004 on: two sums modulo 0xFFF1, as Adler-32 has them, but
// for the start, which is `seed`.
uint32_t pageSum(uint32_t seed, std::span<const uint8_t> bytes);

}  // namespace sg::dwg
