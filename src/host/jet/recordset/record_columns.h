#pragma once

#include <cstddef>
#include <vector>

#include "host/jet/format/format.h"
#include "host/jet/recordset/recordset.h"
#include "host/jet/values/table_definition.h"

namespace sg::jet {

// Places in TableDefinition::columns, in the order in which programs show the columns.
std::vector<size_t> placesInOrder(const TableDefinition& table);
// The columns at these places.
std::vector<RecordColumn> recordColumns(const TableDefinition& table,
                                        const std::vector<size_t>& places, const Format& format);

}  // namespace sg::jet
