#pragma once

#include "base/export.h"
#include "host/model/tables/record_fields.h"
#include "platform/db/filers.h"

namespace sg::model {

// An id through a DWG filer, filed as this kind.
SG_API Acad::ErrorStatus writePointer(AcDbDwgFiler* filer, PointerKind kind, AcDbObjectId id);
SG_API AcDbObjectId readPointer(AcDbDwgFiler* filer, PointerKind kind);

// How what a group with this code refers to is filed; entity names outside the ranges of pointers
// are soft ones.
SG_API PointerKind pointerKind(int code);

}  // namespace sg::model
