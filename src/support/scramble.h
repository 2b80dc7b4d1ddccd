#pragma once

#include <string>
#include <string_view>

// How the product keeps the texts that must not be read off its files: each 16-bit unit plus one.
// It hides them from a search, not from someone who means to find them.
namespace sg {

std::wstring UnscrambleText(std::u16string_view stored);
std::u16string ScrambleText(std::wstring_view text);

}  // namespace sg
