#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Bytes as LISP keeps them: their decimal count, then for each byte a comma and its decimal value,
// such as "3,7,0,255".
namespace sg {

std::wstring byteListText(std::span<const uint8_t> bytes);

// The bytes of such a text. Numbers are read as legacyInteger() does, and a byte is the low 8 bits
// of one. Bytes for which the text has no number are 0, numbers behind the count do not matter.
// nullopt for a count below 0, or far beyond that of any key or signature.
std::optional<std::vector<uint8_t>> parseByteListText(std::wstring_view text);

// The bytes that a text is signed as: one for each 16-bit unit, its value, or 255 above that.
std::vector<uint8_t> clippedBytes(std::wstring_view text);

// The decimal number at the start of a text: white space, a sign and digits. What follows them is
// ignored; without digits it is 0; beyond 32 bits it is the nearest end of their range.
int32_t legacyInteger(std::wstring_view text);

}  // namespace sg
