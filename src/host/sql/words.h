#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/sql/statements.h"

// The dialect's words and names.
namespace sg::sql {

// Words that cannot stand for a column or a table without brackets. Ignoring case, like all here.
bool isReserved(std::wstring_view word);

// The value of True, Yes, On, False, No, Off or Null.
std::optional<jet::Value> constantOf(std::wstring_view word);

std::optional<AggregateFunction> aggregateOf(std::wstring_view word);
std::wstring_view nameOf(AggregateFunction function);

// A parameter's name: its parts with "!" between them.
SG_API std::wstring parameterName(const ColumnName& name);

// In brackets where the dialect needs them.
SG_API std::wstring quotedName(std::wstring_view name);

// A type as its first word tells it, and what may follow.
struct TypeWord {
    std::wstring_view word;
    std::optional<jet::ColumnType> type;
    bool autoNumber = false;
    bool fixed = false;
    // A second word that may follow: VARYING, which makes the type no longer fixed, or PRECISION.
    std::wstring_view second = {};
};

// Null when there is no such type.
const TypeWord* typeOf(std::wstring_view word);
// How the type is called: of synonyms the shortest common one.
std::wstring_view nameOf(const DataType& type);

}  // namespace sg::sql
