#pragma once

#include <sqlite3.h>

#include <string>

#include "host/sql/run/engine.h"

namespace sg::sql {

// Makes a Jet table known to SQLite as the table `name`, in place of one that had this name. Its
// columns are c0, c1... by their places in the table's definition, its row ids
// jet::RowId::packed(). Equalities and ranges on the columns of an index read only that part of it.
void addTable(sqlite3* connection, const std::string& name, const TableUse& use,
              Engine::Running& running);

}  // namespace sg::sql
