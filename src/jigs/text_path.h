#pragma once

#include <optional>

#include "platform/db/mtext.h"
#include "platform/ge/arrays.h"

namespace sg {

// How a text stands at a path.
struct TextPlace {
    AcGePoint3d location;
    AcDbMText::AttachmentPoint attachment = AcDbMText::kTopLeft;
    double rotation = 0;
};

// The place of a text of this height at the segment of the path that is nearest to the cursor, the
// first of those that are as near; nullopt when none is nearer than twice the height. With `onLine`
// the text stands on the line, with the middle of its lines; otherwise across it from the cursor,
// half its height off the line. It never reads upside down.
std::optional<TextPlace> placeAtPath(const AcGePoint3dArray& path, const AcGePoint3d& cursor,
                                     double textHeight, AcDbMText::AttachmentPoint attachment,
                                     bool onLine);

}  // namespace sg
