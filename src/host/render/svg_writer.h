#pragma once

#include <string>

#include "host/render/picture.h"

namespace sg::render {

// A picture as an SVG document: a group for each run of stretches of a layer, text as paths.
SG_API std::string toSvg(const Picture& picture);

}  // namespace sg::render
