#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/jet/values/value.h"
#include "host/sql/run/types.h"

// Values on their way into SQLite and out of it, in the forms of types.h.
namespace sg::sql {

// Answers a function's or a column's value. It must be of its type's form.
void answer(sqlite3_context* context, const jet::Value& value);
// Places count from 1.
void bind(sqlite3_stmt* statement, int place, const jet::Value& value);
// A value of type `type`. Throws jet::Error for what is not in the type's form.
void take(sqlite3_value* from, const Type& type, jet::Value& into);

// A value that stands in a statement's text as it is; empty for one that must be bound.
std::string literalOf(const jet::Value& value);

// Equal for values that SQLite takes for equal, texts by the collation JET; none for Null, which
// equals nothing.
std::optional<uint64_t> hashOf(const jet::Value& value);
std::optional<uint64_t> hashOf(sqlite3_value* value);

// As SQLite's IS would tell it, of texts by the collation JET.
bool areSame(sqlite3_value* a, sqlite3_value* b);

// The bytes of a value that is a text, which hold until SQLite is given the value again.
std::string_view textOf(sqlite3_value* value);

}  // namespace sg::sql
