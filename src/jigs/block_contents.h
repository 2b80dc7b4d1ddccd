#pragma once

#include "platform/db/block_reference.h"
#include "platform/gi/draw.h"

namespace sg {

// Draws what the block of a reference contains, in the place of the reference: nested blocks too,
// and constant attributes as they will show. What is on layer 0 is drawn on the layer of `parent`,
// which may be null. Leaders are drawn as their segments alone while something is dragged.
void drawBlockContents(const AcDbBlockReference& reference, AcGiWorldDraw& draw,
                       const AcDbEntity* parent);

}  // namespace sg
