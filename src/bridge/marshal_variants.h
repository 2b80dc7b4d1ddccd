#pragma once

#include <string_view>

#include "platform/lisp/resbuf.h"
#include "platform/variant/ole_variant.h"
#include "platform/variant/safe_array.h"

// Between LISP's result buffers and the database's variants.
namespace sg {

// The structural nodes of a list as they stand in an array of variants. A text of LISP's that
// equals one of them cannot be told from it.
inline constexpr std::wstring_view kListBeginMarker = L"*RTLB*";
inline constexpr std::wstring_view kListEndMarker = L"*RTLE*";
inline constexpr std::wstring_view kDotMarker = L"*RTDOTE*";
// Starts a record in the array of a query's result.
inline constexpr std::wstring_view kNewRecordMarker = L"*NewRecord*";

// True for a VT_BSTR that equals the marker.
bool isListBeginMarker(const VARIANT& variant);
bool isListEndMarker(const VARIANT& variant);
bool isNewRecordMarker(const VARIANT& variant);

// False for a VT_BOOL of 0 and for VT_EMPTY; true for anything else.
bool isVariantTrue(const VARIANT& variant);

// RTREAL gives VT_R8, RTSHORT and RTLONG VT_I4, RTSTR VT_BSTR, RTNIL VT_EMPTY, RTT VT_BOOL -1.
// False for any other type, and `variant` is then untouched.
bool resbufToVariant(const resbuf& node, COleVariant& variant);

// A new node. VT_I2, VT_I4, VT_UI1 and VT_BOOL (0 or -1) give RTLONG; VT_R4 and VT_R8 RTREAL, 0.0
// for a NaN; VT_DATE an RTSTR in the user's locale, "Invalid DateTime" for a date that has no text;
// VT_BSTR an RTSTR; anything else RTNIL, also VT_CY, which is deliberately not converted.
// With `trim` a text loses the white space at its end; without it, only a text of exactly one blank
// becomes empty. std::bad_alloc when memory is exhausted.
resbuf* variantToResbuf(const VARIANT& variant, bool trim);

// Whether the value of a pair with this key is trimmed: not when the key begins with "s_".
inline bool trimsValueOf(std::wstring_view key) {
    return key.substr(0, 2) != L"s_";
}

// Every node of the list in order, with markers for its structure. False when a node has no
// variant; `array` is then untouched.
bool listToVariantArray(const resbuf* list, COleSafeArray& array);

// Names and values only, alternating: (("a" . 1) ("b" . 2)), (("a" 1) ("b" 2)) and ("a" 1 "b" 2)
// all give the same; a name at the end of a list has VT_NULL. False, with `array` untouched, for a
// list without a name, a name that is no string (the call's result is then set to nil), a name
// without a value, and a value that has no variant.
bool pairsToVariantArray(const resbuf* list, COleSafeArray& array);

}  // namespace sg
