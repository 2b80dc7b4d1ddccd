#pragma once

namespace sg {

// The locale of every database that is created or compacted.
inline constexpr const wchar_t* kDatabaseLocale = L";LANGID=0x0409;CP=1252;COUNTRY=0";

}  // namespace sg
