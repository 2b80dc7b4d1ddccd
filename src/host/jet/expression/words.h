#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/export.h"
#include "host/jet/values/value.h"

// The dialect's words, all ignoring case, and names that must not be taken for them.
namespace sg::jet {

// Words that cannot stand for a column or a table without brackets.
SG_API bool isReserved(std::wstring_view word);

// The value of True, Yes, On, False, No, Off or Null.
SG_API std::optional<Value> constantOf(std::wstring_view word);

// In brackets where the dialect needs them, also where a word means something in some places only.
SG_API std::wstring quotedName(std::wstring_view name);

}  // namespace sg::jet
