#pragma once

#include <string>
#include <string_view>

#include "base/export.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/filers.h"
#include "platform/db/object_id.h"

class AcDbDatabase;

namespace sg::model {

// The record of this name in one of a database's tables; null when there is none, when `database`
// is null and for NamedIn::nothing.
SG_API AcDbObjectId recordNamed(AcDbDatabase* database, NamedIn table, std::wstring_view name);
// The name of a record; empty for what is none.
SG_API std::wstring nameOf(AcDbObjectId record);
// Writes a record's name, or for the null id this one.
SG_API void writeNameOf(AcDbDxfFiler* filer, int code, AcDbObjectId record,
                        const wchar_t* otherwise);

// Sees to it that the application may keep extended data in the database; false for a name that no
// record can have.
SG_API bool registerApplication(AcDbDatabase& database, const wchar_t* name);

// Adds a layer, a linetype or a text style of this name with the properties of a new one. Null
// for a name that no record can have, and for other tables.
SG_API AcDbObjectId addRecord(AcDbDatabase& database, NamedIn table, const std::wstring& name);

}  // namespace sg::model
