#pragma once

#include <string_view>

#include "host/jet/database/database.h"
#include "host/sql/statements.h"

// What programs name when they open or run something.
namespace sg::dao {

// A statement, or the stored query of this name. Throws what is wrong in the text;
// InputTableNotFound (3078) for what is neither, and OperationNotSupported for a pass-through
// query, which is for another program to run.
sql::Statement statementOf(const jet::Database& database, std::wstring_view source);

// The same of a stored query.
sql::Statement storedStatement(const jet::Query& query);

}  // namespace sg::dao
