#pragma once

#include <string>
#include <vector>

#include "base/export.h"
#include "platform/ge/point2d.h"
#include "platform/gi/draw.h"

namespace sg::text {

// The measures of a character; capital letters are 1 high and stand on y = 0.
struct CharacterBox {
    double advance = 0;  // from this character's start to the next one's
    // How far its strokes or outline reach; left is above right when it shows nothing.
    double left = 1, bottom = 0, right = 0, top = 0;
};

// A font that text is set in.
class SG_API Face {
  public:
    virtual ~Face() = default;
    virtual CharacterBox box(wchar_t character) const = 0;
    // What a character shows: strokes, or of an outline font closed contours, of which those that
    // turn the other way round are holes.
    virtual bool isOutline() const = 0;
    virtual const std::vector<std::vector<AcGePoint2d>>& chains(wchar_t character) const = 0;
};

// The face that a style asks for: an outline font of the system where it names one (a typeface, or
// a .ttf, .ttc or .otf file), else the built-in stroke font. It lives as long as the program.
SG_API const Face& faceOf(const AcGiTextStyle& style);

}  // namespace sg::text
