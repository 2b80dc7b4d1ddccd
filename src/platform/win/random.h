#pragma once

#include <cstdint>

#include "base/export.h"

// The one generator of random numbers, of the host. This host's own.

// Begins the sequence that belongs to `seed`.
SG_API void sgSeedRandom(uint32_t seed);

// The next number of the sequence, from 0 to 32767.
SG_API int32_t sgRandom();
