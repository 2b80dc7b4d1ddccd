#pragma once

#include <cstdint>

#include "base/export.h"
#include "host/jet/format/row_id.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/values/value.h"

// Memo and OLE values, which stand in the row, in a row of another page, or in a chain of such.
// See docs/formats/jet.md, "Long values".
namespace sg::jet {

enum class LongValuePlace { Inline, SingleRow, Chain };

// What the row holds of a long value.
struct LongValueHeader {
    uint32_t length = 0;  // bytes of the whole value
    LongValuePlace place = LongValuePlace::Inline;
    RowId first;  // of the value's bytes, unless inline
};

// Throws Damaged when `definition`, a column's bytes in its row, is too short for a header.
SG_API LongValueHeader longValueHeader(ByteView definition);

// The whole value. An inline one is answered as a part of `definition`; another is collected in
// `buffer`. Throws Damaged when the value is longer than the file, its rows are shorter than its
// length, or its chain comes back to itself.
SG_API ByteView readLongValue(const PageStore& store, ByteView definition, Bytes& buffer);

}  // namespace sg::jet
