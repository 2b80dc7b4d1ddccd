#pragma once

#include "host/sql/run/access_path.h"

namespace sg::sql {

// Keys of an index, both ends included: from the first that is `low` or behind it to the last that
// begins with `high` or is before it; empty bytes are no bound. It may be wider than what is asked
// for.
struct KeyRange {
    jet::KeyBytes low;
    jet::KeyBytes high;
    bool isEmpty = false;  // no row can be meant
};

// For a path by an index, given its arguments. Throws OperationNotSupported for a text that has no
// place in the index.
KeyRange rangeOf(const JetTable& table, const AccessPath& path, sqlite3_value** arguments);

}  // namespace sg::sql
