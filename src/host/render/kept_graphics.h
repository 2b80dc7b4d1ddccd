#pragma once

#include <string>

#include "platform/db/entity.h"
#include "platform/gi/draw.h"

namespace sg::render {

// The graphics that a file keeps with an entity of a class that is not there, as a list of drawing
// calls; empty without.
std::string keptGraphics(const AcDbEntity& entity);

// Draws an entity whose class is not known by what its file has of its looks: graphics that were
// kept with it, a block that shows it, or the lines of a multi-line or a mesh. False when there
// is nothing.
SG_API bool drawKeptGraphics(AcGiWorldDraw& draw, const AcDbEntity& entity);

}  // namespace sg::render
