#pragma once

#include <vector>

#include "host/render/entity_draw.h"
#include "platform/db/viewport.h"

namespace sg::render {

// The corners of what a window of a sheet shows the model in: its own, or those of the entity that
// it is cut to.
std::vector<AcGePoint3d> windowOutline(const AcDbViewport& window, Looks& looks,
                                       const DisplaySettings& settings);

}  // namespace sg::render
