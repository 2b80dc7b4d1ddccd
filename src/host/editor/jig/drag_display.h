#pragma once

#include <cstddef>

#include "base/export.h"
#include "platform/db/database.h"
#include "platform/gi/drawable.h"

namespace sg {

// Where what is dragged shows: a canvas on the screen, or what stands in for one.
class SG_API DragDisplay {
  public:
    virtual ~DragDisplay() = default;
    // Shows the drawable, as one of this drawing, in place of what was shown before. It may change
    // afterwards. The drawing's tables stay as they are until clear().
    virtual void show(AcDbDatabase& database, AcGiDrawable& dragged) = 0;
    // Nothing shows any more; the drawable that was shown may be gone.
    virtual void clear() = 0;
};

// How often the parts of drags have been called.
struct DragCounts {
    size_t drags = 0;
    size_t samplers = 0;
    size_t updates = 0;
    size_t redraws = 0;  // of what is dragged
    size_t clears = 0;   // of what it leaves on the screen
};

}  // namespace sg
