#pragma once

#include <string_view>

#include "host/jet/index/sort_order.h"

// The General order of Jet 3, whose texts are code page 1252.
namespace sg::jet {

// Appends the ascending key of `text`, end byte included. A character outside the code page counts
// as the "?" that it would be stored as.
void appendGeneral97Key(std::wstring_view text, KeyBytes& key);

}  // namespace sg::jet
