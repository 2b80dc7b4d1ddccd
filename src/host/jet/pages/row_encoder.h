#pragma once

#include <span>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// A row's bytes put together: the reverse of RowReader, for Jet 4 and ACE. See
// docs/formats/jet.md, "Rows".
namespace sg::jet {

// One column's part of a row.
struct RowPart {
    bool isNull = true;  // of a Boolean: false
    Bytes bytes;         // as encodeValue() makes them; of a long value its header
};

// Replaces `row`, whose memory is used again, by the row that has `parts`: one for each of
// table.columns and in their order. Columns that were deleted from the table get an entry that is
// Null, and Null fixed columns are zero. Throws RecordTooLarge for a row longer than
// Format::row.maxSize, and Damaged when the definition contradicts itself or the size of a fixed
// column's part. The definition must hold columns as TableDefinition::read() gives them.
SG_API void encodeRow(const TableDefinition& table, const Format& format,
                      std::span<const RowPart> parts, Bytes& row);

}  // namespace sg::jet
