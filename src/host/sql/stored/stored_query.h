#pragma once

#include <string_view>

#include "base/export.h"
#include "host/sql/statements.h"

namespace sg::jet {
class Database;
}

// Stored queries made and changed.
namespace sg::sql {

// Keeps the statement `text` as the query `name`, in place of the one that has the name already; a
// hidden one stays hidden. The text of a pass-through query, which another program is to read, is
// kept as it is. Throws what parseStatement(), queryForm() and jet::putQuery() throw, and has
// changed nothing then.
SG_API void storeQuery(jet::Database& database, std::wstring_view name, std::wstring_view text);

// Both throw ObjectExists (3012) when there is a query of the name, and what storeQuery() throws. A
// view whose columns are named must list as many without a star, else 3346.
SG_API void createView(jet::Database& database, const CreateView& statement);
SG_API void createProcedure(jet::Database& database, const CreateProcedure& statement);

}  // namespace sg::sql
