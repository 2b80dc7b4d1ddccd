#pragma once

#include <string>

#include "host/render/picture.h"

namespace sg::render {

// A picture as a PDF document of one page, as large as the picture is on paper. Readers can show
// and hide its layers.
SG_API std::string toPdf(const Picture& picture);

}  // namespace sg::render
