#pragma once

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// Between the bytes of one value and the value. See docs/formats/jet.md, "Values".
namespace sg::jet {

// Decodes `bytes` as a value of `type`. Text and Memo, Binary and Ole are taken as the content
// itself, without a long value's header; a type that is not known gives its Bytes. `scale` is the
// column's, for Numeric. What `into` holds is used again where it has the right type. Throws
// Damaged when there are fewer bytes than the type has.
SG_API void decodeValue(ColumnType type, ByteView bytes, const Format& format, uint8_t scale,
                        Value& into);

// Replaces `bytes` by those of `value`, which is of the column's type as value.h names it (see
// convertTo()) and not Null; of a Boolean there are none, and of Text, Memo, Binary and Ole they
// are the content itself. The bytes of a fixed Text column are filled up with blanks, those of a
// fixed Binary one with zeros. A type that is not known has Bytes. For Jet 4 and ACE. Throws
// FieldTooSmall when they are more than the column holds (of a Text: uncompressed), and
// ConversionError for a value of another type and for a Decimal that has another scale than the
// column or more digits than its precision; both with the column's name.
SG_API void encodeValue(const Column& column, const Value& value, const Format& format,
                        Bytes& bytes);

}  // namespace sg::jet
