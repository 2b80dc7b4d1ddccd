#pragma once

#include <string>

#include "host/jet/database/database.h"

namespace sg::dao {

// Looks that the file that `connect` (";DATABASE=path") names is there now and has the table.
// Throws jet::Error: what opening throws, ObjectNotFound for the table, 3321 when `connect` names
// no file, OperationNotSupported when it names something other than a database file.
void requireLinkedTable(jet::Database& database, const std::wstring& connect,
                        const std::wstring& table);

}  // namespace sg::dao
