#pragma once

#include "base/export.h"
#include "host/jet/byte_view.h"
#include "host/jet/value.h"

// From the bytes of one value to the value. See docs/formats/jet.md, "Values".
namespace sg::jet {

// Decodes `bytes` as a value of `type`. Text and Memo, Binary and Ole are taken as the content
// itself, without a long value's header; a type that is not known gives its Bytes. `scale` is the
// column's, for Numeric. What `into` holds is used again where it has the right type. Throws
// Damaged when there are fewer bytes than the type has.
SG_API void decodeValue(ColumnType type, ByteView bytes, const Format& format, uint8_t scale,
                        Value& into);

}  // namespace sg::jet
