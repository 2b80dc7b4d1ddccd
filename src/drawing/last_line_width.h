#pragma once

#include "platform/db/mtext.h"

namespace sg {

// How wide the last line of a word-wrapped text is, in drawing units. The text is cut and measured
// to find it, and has its contents back in the end.
double lastLineWidth(AcDbMText& text);

}  // namespace sg
