#pragma once

#include "host/model/tables/record_fields.h"

namespace sg::model {

// The fields of a record as a DWG object has them, step by step.
Acad::ErrorStatus writeSteps(AcDbDwgFiler& filer, const RecordFields& fields,
                             std::span<const DwgStep> steps);
Acad::ErrorStatus readSteps(AcDbDwgFiler& filer, RecordFields& fields,
                            std::span<const DwgStep> steps);

}  // namespace sg::model
