#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

// Conversions between the wide strings of the program (one code point a wchar_t) and the encodings
// at its edges. None of them fails: what cannot be converted becomes U+FFFD, or "?" in a code page.
namespace sg {

SG_API std::wstring fromUtf8(std::string_view bytes);
SG_API std::string toUtf8(std::wstring_view text);

// True when `bytes` is well-formed UTF-8 (no overlong forms, no surrogates).
SG_API bool isUtf8(std::string_view bytes);

// Windows code page 1252, the code page of the programs and databases of the system of origin.
SG_API std::wstring fromCp1252(std::string_view bytes);
SG_API std::string toCp1252(std::wstring_view text);

// A text file's content: UTF-8 (a byte order mark is dropped), UTF-16 with a byte order mark, and
// code page 1252 for anything that is neither.
SG_API std::wstring decodeTextFile(std::string_view bytes);

SG_API std::u16string toUtf16(std::wstring_view text);
SG_API std::wstring fromUtf16(std::u16string_view text);

}  // namespace sg
