#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

// Draws what the screen shows anew: an entity, or with null the current viewport, from which what
// was dragged disappears. Answers RTNORM.
SG_API int acedRedraw(const ads_name entity, int mode);
