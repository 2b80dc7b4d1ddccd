#pragma once

#include <string>
#include <string_view>

#include "base/export.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// Values given to a column that are of another type than the column's.
namespace sg::jet {

// Changes `value` into one of the type that the column's values have (value.h), as the engine does
// on assignment. Null stays Null, but for a Boolean becomes false.
//
// | to             | from                                                                        |
// | numbers        | numbers, rounded half to even at the type's last decimal (of a Numeric: at  |
// |                | the column's scale); a Boolean True as -1; a date as its days; text that    |
// |                | holds a number and nothing else but blanks: "." as decimal mark, thousands  |
// |                | separated by ",", "$", an exponent, a sign or parentheses, "&H10", "&O17"   |
// | Boolean        | what is not zero; "True", "Yes", "On", "False", "No", "Off"                 |
// | Date           | numbers as days; text in a form of parseDate()                              |
// | Guid           | text with or without braces; 16 bytes                                       |
// | Text, Memo     | everything, as toInvariantText() has it; bytes only when they are UTF-16    |
// | Binary, Ole    | text as its UTF-16 bytes; a Guid as its 16 bytes                            |
//
// A text keeps its trailing blanks; of a fixed Text column the value is filled up with blanks, of a
// fixed Binary column with zeros. Throws FieldTooSmall for text longer than a Text column and for
// bytes longer than a Binary one, and ConversionError for everything that has no value in the
// column's type: no number is cut off to fit, and dates lie in the years 100 to 9999. Both carry
// the column's name. `value` is unchanged then.
SG_API void convertTo(const Column& column, Value& value);

// The number that `value` is, a Boolean True as -1 and a date as its days, or that it holds as text
// in a form named above. False for Null, bytes, Guids and other text.
SG_API bool toDouble(const Value& value, double& number);

// What an expression or a text column makes of any value: numbers without needless zeros, of a
// Double 15 and of a Single 7 digits ("0.1", "1.5E-07"), dates "m/d/yyyy h:mm:ss AM" without a part
// that is zero, Booleans "-1" and "0", Guids in braces, bytes as the UTF-16 text in them. Null is
// empty.
SG_API std::wstring toInvariantText(const Value& value);

// Reads a date, a time or both, with blanks between them (or "T") and around: "yyyy-mm-dd" and
// "m/d/yyyy", each with "/" or "-", where a first number above 12 is the day; "January 31, 2017",
// "31 Jan 2017" and the like, in English; years of two digits from 1930 to 2029; "h:mm", "h:mm:ss",
// "h:mm:ss.fff", each also with AM or PM, and "h AM". False for any other text and for what is no
// date.
SG_API bool parseDate(std::wstring_view text, Date& date);

// In English; 1 is January.
SG_API std::wstring_view monthName(int month);

// The reverse of partsOf(). False, with `date` as it was, for parts that name no day of the years
// 100 to 9999 or no time of a day.
SG_API bool dateOfParts(const DateParts& parts, Date& date);

}  // namespace sg::jet
