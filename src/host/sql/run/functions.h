#pragma once

#include <sqlite3.h>

#include "host/sql/run/engine.h"

namespace sg::sql {

// Makes known to SQLite: the collation JET; jet() and jetv(), which is called anew for every row,
// for the calls of the program that runs; and the dialect's own aggregates jet_first, jet_last,
// jet_one (of a single row), jet_stdev, jet_stdevp, jet_var, jet_varp, and of decimals jet_sum and
// jet_avg.
void addFunctions(sqlite3* connection, Engine::Running& running);

// Keeps the exception that is being handled, to be thrown again where SQLite was called.
void keepFailure(Engine::Running& running);

}  // namespace sg::sql
