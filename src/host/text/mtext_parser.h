#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/text/mtext_layout.h"

namespace sg::text {

// How characters look where the reader stands.
struct Format {
    AcGiTextStyle style;
    std::optional<AcCmColor> color;
    double tracking = 1;  // the advance is this much larger
    int alignment = 0;    // of what is smaller than the line: 0 baseline, 1 middle, 2 top
    bool under = false;
    bool over = false;
    bool through = false;
};

// How a paragraph is set; lengths in drawing units.
struct Paragraph {
    double firstIndent = 0;
    double leftIndent = 0;
    double rightIndent = 0;
    LineAlignment alignment = LineAlignment::byEntity;
    std::vector<double> tabs;
};

// What formatted text consists of, in its order.
struct TextPiece {
    enum class Kind : uint8_t { word, blank, tab, paragraphEnd, stack };
    Kind kind = Kind::word;
    std::wstring text;   // of a word; above the line of a stack
    std::wstring below;  // of a stack
    wchar_t sign = 0;    // of a stack: '/', '#' or '^'
    Format format;
    Paragraph paragraph;
};

// Reads formatted text into pieces. Words end at blanks, tabs, changes of format and paragraphs; a
// word that follows another one directly goes on with it.
std::vector<TextPiece> readPieces(const std::wstring& contents, const AcGiTextStyle& style);

}  // namespace sg::text
