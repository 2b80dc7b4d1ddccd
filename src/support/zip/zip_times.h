#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <optional>
#include <span>

// The extra field that keeps an entry's time to the second and in every time zone; the format's own
// time is local and counts by two seconds.
namespace sg {

inline constexpr uint16_t kUnixTimeField = 0x5455;

// Flags, of which bit 0 tells that the time of the last change follows, and that time in seconds
// since 1970, four bytes, least significant first.
using UnixTimeField = std::array<uint8_t, 5>;

std::optional<UnixTimeField> fieldFromTime(std::time_t time);  // nullopt beyond 32 bits
std::optional<std::time_t> timeFromField(std::span<const uint8_t> field);

}  // namespace sg
