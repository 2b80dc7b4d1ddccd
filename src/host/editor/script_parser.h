#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/editor/script_input.h"

namespace sg {

// One line of an input script: nothing for a blank line or a comment. On a malformed line nothing
// either, and `problem` tells what was expected.
std::optional<ScriptItem> parseScriptLine(std::wstring_view line, std::wstring& problem);

}  // namespace sg
