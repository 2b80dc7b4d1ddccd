#pragma once

#include <string_view>

#include "platform/gi/draw.h"

namespace sg::render {

// Draws what drawing files keep as the graphics of an entity of an unknown class: a list of drawing
// calls. What is not understood in it is passed over, and a damaged list ends where the damage is.
// False for what is no such list.
SG_API bool playProxyGraphics(AcGiWorldDraw& draw, std::string_view graphics);

}  // namespace sg::render
