#pragma once

#include "host/model/tables/record_fields.h"

// Views, viewports, coordinate systems and sheets as DWG objects: the steps of their records.
namespace sg::model {

std::span<const DwgStep> viewSteps();
std::span<const DwgStep> viewportSteps();
std::span<const DwgStep> ucsSteps();
std::span<const DwgStep> plotSteps();
std::span<const DwgStep> layoutSteps();

}  // namespace sg::model
