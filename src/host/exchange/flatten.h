#pragma once

#include <map>
#include <string>

#include "base/export.h"
#include "platform/db/database.h"

namespace sg::exchange {

// Puts plain entities in the place of those of applications' classes, which other programs do not
// know. Answers those that stay, by their names in files: their class is absent, or cannot be taken
// apart.
SG_API std::map<std::wstring, size_t> flatten(AcDbDatabase& database);

}  // namespace sg::exchange
