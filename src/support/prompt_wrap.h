#pragma once

#include <string>

namespace sg {

// Breaks a text at its blanks into lines of at most 75 16-bit units, each word with one blank
// behind it, and answers how many lines it has now. Words are never broken: one that is longer has
// a line of its own, behind an empty one at the start of the text. A word with a line feed in it
// starts the count of its line anew, and counts whole.
int WrapPrompt(std::wstring& text);

}  // namespace sg
