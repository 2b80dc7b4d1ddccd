#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/jet/expression/words.h"
#include "host/sql/statements.h"

// The dialect's words in statements.
namespace sg::sql {

using jet::constantOf;
using jet::isReserved;
using jet::quotedName;

std::optional<AggregateFunction> aggregateOf(std::wstring_view word);
std::wstring_view nameOf(AggregateFunction function);

// A parameter's name: its parts with "!" between them.
SG_API std::wstring parameterName(const ColumnName& name);

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
