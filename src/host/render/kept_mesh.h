#pragma once

#include "host/render/kept_groups.h"
#include "platform/gi/draw.h"

namespace sg::render {

// Draws a polyface or polygon mesh, of which `groups` are the POLYLINE's, as its edges. False for
// anything else.
bool drawKeptMesh(AcGiWorldDraw& draw, const AcDbEntity& entity,
                  const std::vector<KeptGroup>& groups);

}  // namespace sg::render
