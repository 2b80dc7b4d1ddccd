#pragma once

#include <vector>

#include "base/export.h"
#include "platform/ge/point2d.h"

namespace sg::text {

// A character of the built-in stroke font, which serves for every stroke font that a style names.
// Capital letters are 1 high and stand on y = 0; the pen starts at x = 0.
struct StrokeGlyph {
    double advance = 0;
    std::vector<std::vector<AcGePoint2d>> strokes;
};

// The font has Latin-1, the diameter sign and the empty set's; "?" stands for any other character.
SG_API const StrokeGlyph& strokeGlyph(wchar_t character);

}  // namespace sg::text
