#pragma once

#include <optional>
#include <string_view>

// The parts of a file name as text. Both "/" and "\" separate folders, and so does the colon of a
// drive ("C:"). What is answered is a part of `path`, as it is written there; no file need exist.
namespace sg {

// The name without folder and extension: "plan" of "c:\work\plan.dwg", "a.b" of "a.b.c".
std::wstring_view filenameBase(std::wstring_view path);

// The folder without a separator at its end, but for a root's own: "c:\work" of "c:\work\plan.dwg",
// "c:\" of "c:\plan.dwg", "/" of "/plan.dwg". Empty when the path has none.
std::wstring_view filenameDirectory(std::wstring_view path);

// The extension from its dot on, ".dwg"; nothing when the name has no dot.
std::optional<std::wstring_view> filenameExtension(std::wstring_view path);

}  // namespace sg
