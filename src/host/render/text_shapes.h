#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/ge/point2d.h"
#include "platform/gi/draw.h"

namespace sg::render {

// A character of a line of text, placed: chains of points one after the other, with the number of
// each. Strokes, or the closed contours of an outline.
struct PlacedGlyph {
    bool isOutline = false;
    std::vector<AcGePoint2d> points;
    std::vector<uint32_t> counts;
};

// Calls `visit` with each character that shows of plain text, which starts at the origin and runs
// along x, in drawing units.
SG_API void visitGlyphs(std::wstring_view plain, const AcGiTextStyle& style,
                        const std::function<void(const PlacedGlyph&)>& visit);

}  // namespace sg::render
