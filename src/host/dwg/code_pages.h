#pragma once

#include <cstdint>
#include <string_view>

namespace sg::dwg {

// The code pages of texts by their numbers in files, with the names that $DWGCODEPAGE has for them.
// A number without a name is ANSI_1252, and a name without a number its number.
std::string_view codePageName(uint16_t number);
uint16_t codePageNumber(std::string_view name);

}  // namespace sg::dwg
