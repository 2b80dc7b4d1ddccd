#pragma once

#include <string>
#include <string_view>

#include "base/export.h"

// Small operations on wide text that do not depend on the process's locale.
namespace sg {

SG_API wchar_t toUpper(wchar_t c);
SG_API wchar_t toLower(wchar_t c);
SG_API std::wstring upperCased(std::wstring_view text);
SG_API std::wstring lowerCased(std::wstring_view text);

// True when the two are equal but for case.
SG_API bool equalIgnoringCase(std::wstring_view a, std::wstring_view b);

// White space as programs of the system of origin trim it: blank, tab, line feed, carriage return,
// vertical tab, form feed and the no-break space.
SG_API bool isBlank(wchar_t c);
SG_API std::wstring_view trimmedRight(std::wstring_view text);
SG_API std::wstring_view trimmed(std::wstring_view text);

}  // namespace sg
