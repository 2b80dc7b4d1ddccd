#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/editor/commands/command.h"
#include "platform/db/color.h"
#include "platform/db/entity.h"

// Colours and line widths as users write them.
namespace sg::commands {

// A number from 1 to 255, one of the names red, yellow, green, cyan, blue, magenta and white, or
// red, green and blue from 0 to 255 with commas between them.
std::optional<AcCmColor> colorNamed(std::wstring_view text);

// Asks for a color: what is typed, and after Truecolor its red, green and blue.
std::wstring askColor(Command& c, const std::wstring& prompt);

// "1 (red)", "8", "10,20,30".
std::wstring colorText(const AcCmColor& color);

// A width in millimetres, with or without "mm" behind it; nullopt for one that lines can't have.
std::optional<AcDb::LineWeight> lineWidthNamed(std::wstring_view text);

}  // namespace sg::commands
