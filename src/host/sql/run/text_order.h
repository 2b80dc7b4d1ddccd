#pragma once

#include <cstdint>
#include <string_view>

// The dialect's order of texts in UTF-8: the General order, in which case and trailing blanks make
// no difference. It is the order of indexes; texts that are longer than what indexes keep of them
// are told apart by the rest of their characters, and texts with a character that the order has no
// weight for come behind all others.
namespace sg::sql {

// Below, equal to or above 0 as `a` is before, the same as or behind `b`.
int compareTexts(std::string_view a, std::string_view b);

// Equal for texts that compare as the same.
uint64_t hashOf(std::string_view text);

// As much of the beginning as only has characters of which each has a weight for itself: the keys
// of all texts that begin so, in any case of letters, begin with the same bytes. Blanks at its end,
// which keys may leave out, are not part of it.
std::string_view keptByKeys(std::string_view text);

}  // namespace sg::sql
