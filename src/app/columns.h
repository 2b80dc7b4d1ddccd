#pragma once

#include <string>
#include <vector>

namespace sg::app {

// Names in columns of equal width, filled downwards, each line indented by two blanks.
std::wstring inColumns(const std::vector<std::wstring>& names, int width);

}  // namespace sg::app
