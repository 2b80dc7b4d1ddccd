#pragma once

namespace sg::graphics {

// Sees to it that the toolkit's application object exists, without a display where there is none.
// It lives as long as the program.
void needApplication();

}  // namespace sg::graphics
