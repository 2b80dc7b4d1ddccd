#pragma once

#include "host/dwg/reading.h"
#include "host/dwg/write_filer.h"

namespace sg::dwg {

// Takes the header variables, the database's roots and what else the header has. Throws Error when
// the section cannot be read.
void readHeader(Reading& reading);
// Names of what the header names by its handle, when everything is read.
void nameStyles(Reading& reading);

// The section of a database. `seed` is the handle that comes next; `viewportHeaders` the handle of
// their table, which files up to release 2000 have.
Bytes writeHeader(const model::DatabaseState& state, const WriteContext& context, uint64_t seed,
                  uint64_t viewportHeaders);

}  // namespace sg::dwg
