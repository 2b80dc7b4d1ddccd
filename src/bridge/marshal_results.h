#pragma once

#include "platform/lisp/resbuf.h"
#include "platform/variant/safe_array.h"

// Arrays of variants as LISP results. Each build function answers a new list, which the caller
// releases with acutRelRb; each return function gives that list to the host as the call's result
// and releases it. An array without elements gives the empty list.
namespace sg {

// (("name" . value) ...) from names and values alternating. A name is the element's text, empty
// when it is no VT_BSTR; a last name without a value is left out.
resbuf* buildPairList(const COleSafeArray& array);
void returnPairList(const COleSafeArray& array);

// (value ...).
resbuf* buildValueList(const COleSafeArray& array);
void returnValueList(const COleSafeArray& array);

// A query's result. Each "*NewRecord*" starts a record, whose elements are names and values
// alternating: ((("a" . 1) ("b" . 2)) (("a" . 3) ("b" . 4)) ...). Elements ahead of the first
// marker are values by themselves, as a query with one column gives them: (value ...).
resbuf* buildRecordList(const COleSafeArray& array);
void returnRecordList(const COleSafeArray& array);

}  // namespace sg
