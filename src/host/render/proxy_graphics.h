#pragma once

#include <string>
#include <string_view>

#include "platform/db/entity.h"
#include "platform/gi/draw.h"

namespace sg::render {

// Draws what drawing files keep as the graphics of an entity of an unknown class: a list of drawing
// calls. What is not understood in it is passed over, and a damaged list ends where the damage is.
// False for what is no such list.
SG_API bool playProxyGraphics(AcGiWorldDraw& draw, std::string_view graphics);

// Writes down how an entity draws itself, as such a list. What is by layer is that of the entity's
// own layer, so that it follows that in other programs; what stands on other layers in its blocks
// has the looks that those have now. Linetypes are not kept, and of a list that grows beyond a
// megabyte its beginning is. Empty when the entity draws nothing.
SG_API std::string recordProxyGraphics(AcDbEntity& entity);

// How an entity looks for programs that do not know its class: of a class of an application, as it
// draws itself; of a proxy what its file kept, or what can be drawn of it otherwise. Empty for
// other objects.
SG_API std::string graphicsForOthers(const AcDbObject& object);

}  // namespace sg::render
