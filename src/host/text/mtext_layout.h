#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/db/color.h"
#include "platform/gi/draw.h"

namespace sg::text {

// A run of characters of one look within a line of laid-out text.
struct TextRun {
    std::wstring text;
    AcGiTextStyle style;             // its height is the run's
    std::optional<AcCmColor> color;  // none: the entity's
    double x = 0;                    // from the line's start
    double y = 0;                    // over the line's baseline
    double width = 0;                // the advance
};

// A straight line that goes with the text: under, over or through it, or in a fraction.
struct TextRule {
    double x1, y1, x2, y2;  // as those of runs
    std::optional<AcCmColor> color;
};

enum class LineAlignment : uint8_t { byEntity, left, center, right, justified, distributed };

struct TextLine {
    std::vector<TextRun> runs;
    std::vector<TextRule> rules;
    double width = 0;     // of what shows: blanks at its end do not count
    double ascent = 0;    // how far its capital letters reach over the baseline
    double descent = 0;   // of its lowest, under the baseline, positive
    double height = 0;    // of its capital letters, the largest
    double baseline = 0;  // under the first line's top, positive
    double indent = 0;    // of the paragraph
    LineAlignment alignment = LineAlignment::byEntity;
};

// Text in lines. Its top is that of the first line's capital letters, its height reaches to the
// last baseline. What rises or sinks further is ascent and descent's affair.
struct TextLayout {
    std::vector<TextLine> lines;
    double width = 0;  // of the widest line
    double height = 0;
    double ascent() const { return lines.empty() ? 0 : lines.front().ascent; }
    double descent() const { return lines.empty() ? 0 : lines.back().descent; }
};

struct LayoutOptions {
    AcGiTextStyle style;  // its height is the text's
    double width = 0;     // where lines are wrapped; 0: nowhere
    double lineSpacing = 1;
    bool exactSpacing = false;  // lines stay as far apart whatever stands in them
};

// Lays out formatted text. Damaged formatting codes are shown as they stand. Lines stand 5/3 of a
// text height apart, times the spacing.
SG_API TextLayout layOut(const std::wstring& contents, const LayoutOptions& options);

// The text without its formatting; paragraphs end in a line feed, a stack shows its parts with its
// sign between.
SG_API std::wstring plainText(const std::wstring& contents);

}  // namespace sg::text
