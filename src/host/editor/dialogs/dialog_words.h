#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The operands of a script's lines about dialogs.
namespace sg {

// Takes a whole number that stands alone off the left of `text`, with the blanks behind it.
std::optional<int> takeWholeNumber(std::wstring_view& text);

// Takes one of the names off the left of `text`, ignoring case: one in quotes, or else the longest
// that stands there. Answers its place among them; nothing, with `text` as it was, when there is
// none. With `isWhole` the name is all that is left.
std::optional<size_t> takeName(std::wstring_view& text, const std::vector<std::wstring>& names,
                               bool isWhole = false);

// Takes what stands before the next blank.
std::wstring takeWord(std::wstring_view& text);

// A label as a script writes it: without a colon at its end.
std::wstring_view withoutColon(std::wstring_view label);

}  // namespace sg
