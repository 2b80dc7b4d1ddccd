#include "support/zip/zip_times.h"

#include <limits>

namespace sg {

std::optional<UnixTimeField> fieldFromTime(std::time_t time) {
    using Limits = std::numeric_limits<int32_t>;
    if (time < Limits::min() || time > Limits::max()) return std::nullopt;
    const auto bits = static_cast<uint32_t>(time);
    UnixTimeField field{1};
    for (size_t i = 0; i < 4; ++i)
        field[i + 1] = static_cast<uint8_t>(bits >> 8 * i);
    return field;
}

std::optional<std::time_t> timeFromField(std::span<const uint8_t> field) {
    if (field.size() < 5 || (field[0] & 1) == 0) return std::nullopt;
    uint32_t bits = 0;
    for (size_t i = 5; i-- > 1;)
        bits = bits << 8 | field[i];
    return static_cast<int32_t>(bits);
}

}  // namespace sg
