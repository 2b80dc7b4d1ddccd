#pragma once

#include <string>

#include "base/export.h"
#include "host/jet/storage/storage.h"

namespace sg {

// The options with which this host opens databases: a file that a link leads to is found as every
// file name is (resolvePath()), and reportForeignLock() is called before the first change.
SG_API jet::StorageOptions databaseOptions();

// Tells on a line of standard error when another program's lock file lies beside the database, and
// who is entered in it: such a program does not heed our locks.
SG_API void reportForeignLock(const std::wstring& database);

}  // namespace sg
