#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The algorithms of the vl-string- functions. Positions are 0-based and count characters.
namespace sg {

// Where `pattern` first stands in `text` at or after `start`; nothing when it does not, or when
// `start` lies beyond the end. The empty pattern stands everywhere.
std::optional<size_t> stringSearch(std::wstring_view pattern, std::wstring_view text,
                                   size_t start = 0);

// How many characters `a` from `startA` and `b` from `startB` have in common before the first that
// differs. A start beyond the end leaves nothing to compare.
size_t stringMismatch(std::wstring_view a, std::wstring_view b, size_t startA = 0,
                      size_t startB = 0, bool ignoreCase = false);

// `text` with the first occurrence of `pattern` at or after `start` replaced; `text` itself when
// there is none.
std::wstring stringSubst(std::wstring_view replacement, std::wstring_view pattern,
                         std::wstring_view text, size_t start = 0);

// `text` with each character of `source` replaced by the character at the same place of
// `destination`. A shorter destination is continued with its last character; an empty one changes
// nothing. Of a character that stands twice in `source` the first place counts.
std::wstring stringTranslate(std::wstring_view source, std::wstring_view destination,
                             std::wstring_view text);

// `text` without the characters of `set` at its start, its end, or both.
std::wstring_view stringLeftTrim(std::wstring_view set, std::wstring_view text);
std::wstring_view stringRightTrim(std::wstring_view set, std::wstring_view text);
std::wstring_view stringTrim(std::wstring_view set, std::wstring_view text);

}  // namespace sg
