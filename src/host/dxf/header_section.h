#pragma once

#include "host/dxf/reading.h"

namespace sg::dxf {

// The section of header variables. Reading it twice is in order: the first time for the release and
// the code page, which tell how its texts are read, the second time, when the tables are there, for
// the values.
void readVersion(Reading& reading, size_t position);
void readHeader(Reading& reading, size_t position);

}  // namespace sg::dxf
