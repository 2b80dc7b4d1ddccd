#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/jet/values/value.h"

// The Format function.
namespace sg::jet::detail {

// `value` in one of the named formats ("General Number", "Currency", "Fixed", "Standard",
// "Percent", "Scientific", "Yes/No", "True/False", "On/Off", "General Date", "Long Date", "Medium
// Date", "Short Date", "Long Time", "Medium Time", "Short Time") or in a pattern:
// - of numbers when it has one of 0 # %, in up to four sections for positive, negative, zero, Null;
// - of dates when it has a letter of c d w m q y h n s t or AM/PM;
// - of text when it has one of @ & < > !, in up to two sections, the second for Null and "".
// What doesn't fit its pattern comes as it is without one. The names and marks are those of the
// United States. A day of the week from 1 (Sunday), a first week as weekOfYear() has it. Throws
// ConversionError for a date beyond the years that there are.
std::wstring formatted(const Value& value, std::wstring_view pattern, int firstDayOfWeek,
                       int firstWeek);

// The part of formatted() that is about numbers; of Null with the fourth section, else "".
std::wstring formattedNumber(const Value& value, std::wstring_view pattern);

// The part of formatted() that is about texts.
std::wstring formattedText(std::wstring_view text, std::wstring_view pattern);

// The sections of a pattern, with ";" between them; at least one.
std::vector<std::wstring_view> formatSections(std::wstring_view pattern);

// Where the element of a pattern at `at` ends: a quoted text and an escaped character are one.
size_t formatElementEnd(std::wstring_view pattern, size_t at);

}  // namespace sg::jet::detail
