#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/gi/draw.h"

namespace sg::text {

// A line over, under or through a run of characters.
struct Decoration {
    enum class Kind : uint8_t { under, over, through };
    Kind kind;
    size_t first, end;  // characters
};

// A line of text without its control codes.
struct PlainLine {
    std::wstring text;
    std::vector<Decoration> decorations;
};

// Reads the codes of single-line text: %%c, %%d, %%p and %%% (diameter, degrees, plus and minus,
// per cent), %%nnn (a character's number), %%u, %%o and %%k (under, over and through, on and off)
// and \U+XXXX. What is no code stays as it is.
SG_API PlainLine decodeLine(std::wstring_view text);

// The box around a line that starts at the origin and runs along x, in drawing units. `advance` is
// where text behind it would start. `left` is above `right` when nothing shows.
struct LineBox {
    double left = 1, bottom = 0, right = 0, top = 0;
    double advance = 0;

    bool isEmpty() const { return left > right; }
};

// Of plain text, without decorations.
SG_API LineBox measureLine(std::wstring_view plain, const AcGiTextStyle& style);

}  // namespace sg::text
