#pragma once

#include <cstdint>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/pages/long_value.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// Writes Memo and OLE values. See docs/formats/jet.md, "Long values".
namespace sg::jet {

// The longest value that stands whole in its row.
inline constexpr size_t mostInlineLongValue = 64;

// Stores `content` and replaces `header` by the bytes that the row holds of it: a short one stands
// whole in them, a longer one in a row of another page, and one that is longer than
// maxLongValueRow in a chain of such; nothing for an empty one. `column` names the maps of the
// pages that the column's values own; where it has none, those of the table are used. Throws
// RecordTooLarge for more than longValues::lengthMask bytes.
SG_API void storeLongValue(PageAllocator& allocator, const TableDefinition& table,
                           const Column& column, ByteView content, Bytes& header);

// Frees the rows of a value that storeLongValue(), or another program, has made; `header` is what
// its row holds of it. Throws Damaged as readLongValue() does.
SG_API void eraseLongValue(PageAllocator& allocator, const TableDefinition& table,
                           const Column& column, ByteView header);

}  // namespace sg::jet
