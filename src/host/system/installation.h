#pragma once

#include "base/export.h"

namespace sg {

class RegistryStore;

// What an installer leaves in the registry: the sections in which the product keeps its settings,
// since programs store only in sections that exist. They are made when the user's registry knows
// nothing of the product; one that was deleted since then stays deleted. Where the registry cannot
// be written nothing is made, and nothing said.
SG_API void installSections(RegistryStore& registry);

}  // namespace sg
