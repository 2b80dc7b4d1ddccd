#pragma once

#include "base/export.h"
#include "host/model/tables/record_fields.h"
#include "platform/db/filers.h"

namespace sg::model {

// An id through a DWG filer, filed as this kind.
SG_API Acad::ErrorStatus writePointer(AcDbDwgFiler* filer, PointerKind kind, AcDbObjectId id);
SG_API AcDbObjectId readPointer(AcDbDwgFiler* filer, PointerKind kind);

// A list of groups through a DWG filer; ids as their codes say.
SG_API Acad::ErrorStatus writeGroups(AcDbDwgFiler* filer, const resbuf* groups);
// The caller releases the list.
SG_API Acad::ErrorStatus readGroups(AcDbDwgFiler* filer, resbuf*& groups);

// A copy of a list of groups; the caller releases it.
SG_API resbuf* copyGroups(const resbuf* groups);

}  // namespace sg::model
