#pragma once

#include <string>

#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

namespace sg::app {

// A database's value as people read it, on a terminal or in a window: numbers as expressions make
// them, dates "2017-01-31 14:30:00" without a time at midnight, Booleans True and False, bytes in
// hexadecimal, Null empty. But for bytes the engine reads the same value from it again.
std::wstring shownValue(const jet::Value& value);

// Whether values of the type stand at the right of their column.
bool isNumber(jet::ColumnType type);

}  // namespace sg::app
