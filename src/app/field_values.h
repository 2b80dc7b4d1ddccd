#pragma once

#include <string_view>

#include "host/jet/schema/design.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// Fields of comma-separated values as values of a database, in the forms in which CsvWriter writes
// them. Nothing depends on a locale, and no form can be taken for another.
namespace sg::app {

// Reads a field, which is UTF-8, for a column. One without a value (empty, not in quotes) is Null.
//
// | column          | forms                                                                      |
// | Boolean         | 1, -1, true, yes, on; 0, false, no, off; in any case                       |
// | whole numbers   | -12; also 12.0 and 1.2e3, but nothing that is not whole                    |
// | Single, Double  | -1.5, 1.5e-07, inf, nan                                                    |
// | Currency,       | -1.5, 1.5e-07; rounded half to even at the column's last digit             |
// | Decimal         |                                                                            |
// | Date            | 2017-01-31, 2017-01-31 14:30, 2017-01-31 14:30:00, also with a T; 14:30:00 |
// | Text, Memo      | the text                                                                   |
// | Binary, OLE     | hexadecimal digits                                                         |
// | Guid            | with or without braces                                                     |
//
// But for texts, blanks around a value do not count. Throws jet::Error: ConversionError with what
// was expected, FieldTooSmall for binary data that is too long.
void readField(std::string_view text, bool isNull, const jet::Column& column, jet::Value& into);

// Finds out which type a column must have for the fields in it.
class ColumnGuess {
  public:
    void add(std::string_view text, bool isNull);

    // A column of the first of these types that holds every value as it is written:
    //
    // | Boolean   | true and false in words, and no Null                                        |
    // | Long      | whole numbers without leading zeros that fit                                |
    // | Currency  | numbers with four digits behind the point                                   |
    // | Double    | numbers without leading zeros; whole ones have at most 15 digits            |
    // | Date      | 2017-01-31, also with a time behind it                                      |
    // | Guid      | in braces                                                                   |
    // | Text      | up to 255 characters; also where there is no value at all                   |
    // | Memo      | longer ones                                                                 |
    jet::ColumnDesign column(std::wstring name) const;

  private:
    unsigned excluded_ = 0;  // types that cannot be
    bool hasValue_ = false;
    bool isLong_ = false;
};

}  // namespace sg::app
