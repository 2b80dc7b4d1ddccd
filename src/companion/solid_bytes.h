#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "companion/shape/body.h"

namespace sg::companion {

// Bodies as drawings keep them (docs/formats/solids.md).
std::vector<uint8_t> toBytes(const Steps& steps);
// False, and nothing is read, for bytes that are no such thing.
bool fromBytes(std::span<const uint8_t> bytes, Steps& steps);

}  // namespace sg::companion
