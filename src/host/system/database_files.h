#pragma once

#include "base/export.h"
#include "host/jet/storage/storage.h"

namespace sg {

// The options with which this host opens databases: a file that a link leads to is found as every
// file name is (resolvePath()).
SG_API jet::StorageOptions databaseOptions();

}  // namespace sg
