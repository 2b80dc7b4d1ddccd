#pragma once

#include <string>
#include <string_view>

namespace sg {

// A text as the quoted-printable encoding (RFC 2045) of its UTF-8, in lines of at most 76
// characters with CR LF. Each line end of the text, of any kind, is a line end of the result.
std::string quotedPrintable(std::wstring_view text);

}  // namespace sg
