#pragma once

#include "host/model/tables/record_fields.h"

namespace sg::model {

// The variables of a dimension style as DWG objects of the filer's release have them.
std::span<const DwgStep> dimStyleSteps(const AcDbDwgFiler& filer);

}  // namespace sg::model
