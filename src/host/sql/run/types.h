#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/jet/format/format.h"
#include "host/jet/values/value.h"

// The types of expressions, and how values of each travel through SQLite.
namespace sg::sql {

using jet::ColumnType;

// What an expression gives; no type for one that is always Null.
struct Type {
    std::optional<ColumnType> column;
    uint32_t size = 0;  // as jet::RecordColumn has it

    Type() = default;
    Type(ColumnType type);
    Type(ColumnType type, uint32_t size) : column(type), size(size) {}
};

// How SQLite holds a type's values, so that its own comparisons order them as the dialect does.
enum class Form : uint8_t {
    Null,
    Whole,     // INTEGER; Booleans -1 and 0
    Single,    // REAL
    Real,      // REAL
    Date,      // REAL, days
    Currency,  // INTEGER, ten-thousandths
    Text,      // TEXT, to be compared by the collation JET
    Guid,      // BLOB of 16 bytes
    Bytes,     // BLOB
    Decimal,   // BLOB whose bytes sort as the numbers
};
Form formOf(const Type& type);
inline bool isText(const Type& type) {
    return formOf(type) == Form::Text;
}
inline bool isBoolean(const Type& type) {
    return type.column == ColumnType::Boolean;
}

Type typeOf(const jet::Value& value);
// Of a column that takes its values from either.
Type commonType(const Type& a, const Type& b);
// What +, - and * give; `sum` tells that it isn't *.
Type arithmeticType(const Type& a, const Type& b, bool sum, bool subtract);
// The result of a function whose first argument is of type `first`.
Type functionType(std::wstring_view name, const Type& first);

// `value` as one of `type`: its C++ type is the one that such a column gives. Whole numbers that
// don't fit stay as they are. Throws jet::Error.
jet::Value asType(const Type& type, jet::Value value);

}  // namespace sg::sql
