#pragma once

#include <string>
#include <string_view>

#include "base/export.h"
#include "platform/db/database.h"
#include "platform/lisp/resbuf.h"
#include "platform/rx/rxclass.h"

namespace sg::model {

// The class of the object that a list of groups describes, by its group 0 and, where several
// classes share that, its flags (70) or markers (100). Null for an unknown one.
SG_API const AcRxClass* classOfGroups(const resbuf* groups);

// The table of a database whose records are of this class.
SG_API AcDbObjectId tableOfRecords(const AcDbDatabase& database, const AcRxClass* type);
// The table whose records have this DXF name, such as LAYER, ignoring case; BLOCK stands for the
// blocks. The null id for an unknown name.
SG_API AcDbObjectId tableNamed(const AcDbDatabase& database, std::wstring_view name);

}  // namespace sg::model
