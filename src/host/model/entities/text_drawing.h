#pragma once

#include <string>

#include "host/model/entities/text_setting.h"
#include "platform/gi/draw.h"

namespace sg::model {

// Draws a line of text, with its control codes, from its baseline's start.
void drawLine(AcGiWorldDraw& draw, const std::wstring& text, const Frame& frame,
              const AcGiTextStyle& style);

}  // namespace sg::model
