#pragma once

#include <string>

#include "platform/win/identifiers.h"

namespace sg {

// An identifier in 22 characters, as the IFC standard (ISO 16739-1, IfcGloballyUniqueId) writes it:
// its 16 bytes in the order of the text form, one and then five times three of them, each number in
// base 64 with its highest digit first.
std::wstring compressedGuid(const GUID& guid);

}  // namespace sg
