#pragma once

#include <cstdint>
#include <vector>

#include "base/export.h"
#include "host/system/registry_tree.h"

// Registry values as the bytes in which the system of origin keeps them: texts in 16-bit units, the
// lower byte first, with their final zeros; numbers with the lowest byte first.
namespace sg {

// A value of that type and of those bytes; RegistryRaw when no other form gives the same bytes
// back.
SG_API RegistryData registryDataOf(uint32_t type, const std::vector<uint8_t>& bytes);

SG_API RegistryRaw registryBytesOf(const RegistryData& data);

}  // namespace sg
