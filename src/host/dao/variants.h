#pragma once

#include "base/export.h"
#include "host/jet/values/value.h"
#include "platform/variant/ole_variant.h"

// Between the engine's values and VARIANTs.
namespace sg::dao {

// As CDaoRecordset tells by type.
SG_API COleVariant toVariant(const jet::Value& value);

// VT_EMPTY and VT_NULL are Null. Throws jet::Error ConversionError for a type that holds no value
// of a field (VT_ERROR, arrays of variants).
SG_API jet::Value fromVariant(const VARIANT& variant);

}  // namespace sg::dao
