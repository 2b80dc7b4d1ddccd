#pragma once

#include "base/export.h"

namespace sg::graphics {

// Sees to it that the toolkit's application object exists, without a display where there is none.
// It lives as long as the program.
SG_API void needApplication();

}  // namespace sg::graphics
