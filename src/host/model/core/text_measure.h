#pragma once

#include <string>

#include "base/export.h"
#include "platform/gi/draw.h"

namespace sg::model {

// How far a line of text reaches from its baseline's start, in drawing units along the baseline and
// at a right angle to it.
struct TextBox {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;

    bool isEmpty() const { return left >= right; }
};

using TextMeasure = TextBox (*)(const std::wstring& text, const AcGiTextStyle& style);

// Measures by the function that was set last. Without one every letter is as wide as it is high,
// times the style's width factor.
SG_API TextBox measureText(const std::wstring& text, const AcGiTextStyle& style);
SG_API void setTextMeasure(TextMeasure measure);

}  // namespace sg::model
