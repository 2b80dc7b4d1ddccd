#pragma once

#include <string_view>

namespace sg {

// `wcmatch`: true when the whole of `text` matches `pattern`. Case counts.
//
//   #        one digit                       [...]   one of these characters; a-z is a range
//   @        one letter                      [~...]  one character that is none of these
//   .        neither a digit nor a letter    ~       first: whatever does not match the rest
//   ?        one character                   ,       separates alternatives
//   *        any characters, also none       `       takes the next character as it is
//
// Between brackets only "`", and "-" between two characters, are special; "]" as the first of a set
// stands for itself. A bracket that nothing closes stands for itself, and so does a "`" at the end.
// The time grows at most with the product of the two lengths.
bool wildcardMatch(std::wstring_view text, std::wstring_view pattern);

}  // namespace sg
