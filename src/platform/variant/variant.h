#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/export.h"
#include "platform/win/hresult.h"

// VARIANT: one value together with its type, as the database engine takes and gives it.

using VARTYPE = uint16_t;

enum : VARTYPE {
    VT_EMPTY = 0,  // no value
    VT_NULL = 1,   // a database's NULL
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,  // as the element type of an array only
    VT_DECIMAL = 14,
    VT_UI1 = 17,
    VT_ARRAY = 0x2000,  // a flag beside the element type
};

using VARIANT_BOOL = int16_t;
enum : VARIANT_BOOL { VARIANT_FALSE = 0, VARIANT_TRUE = -1 };

// A wide string with its length stored ahead of the first character, so that it may hold zeros. A
// zero follows the last character. Null is a string without characters.
using BSTR = wchar_t*;

// An amount of money in ten-thousandths of its unit.
struct CY {
    int64_t int64;
};

// One dimension of values; see platform/variant/safe_array.h.
struct SAFEARRAY;

// A plain value: whoever holds one calls VariantInit before the first use and VariantClear after
// the last. COleVariant does both.
struct VARIANT {
    VARTYPE vt;
    uint8_t decScale;  // VT_DECIMAL: digits behind the point, 0 to 28
    uint8_t decSign;   // VT_DECIMAL: 0x80 when negative
    uint32_t decHi32;  // VT_DECIMAL: the magnitude's upper part
    union {
        int16_t iVal;          // VT_I2
        int32_t lVal;          // VT_I4, VT_ERROR
        uint8_t bVal;          // VT_UI1
        VARIANT_BOOL boolVal;  // VT_BOOL
        float fltVal;          // VT_R4
        double dblVal;         // VT_R8
        double date;           // VT_DATE: days since 1899-12-30
        CY cyVal;              // VT_CY
        uint64_t decLo64;      // VT_DECIMAL: the magnitude's lower part
        BSTR bstrVal;          // VT_BSTR, owned
        SAFEARRAY* parray;     // VT_ARRAY, owned
    };
};

// New strings; null when memory is exhausted, and for a null `text`. With a length, `text` may be
// null: the characters are then zeros to be written over.
SG_API BSTR SysAllocString(const wchar_t* text);
SG_API BSTR SysAllocStringLen(const wchar_t* text, size_t length);
SG_API void SysFreeString(BSTR text);
// The same string for one more holder, each of whom frees it and none of whom writes over it. For
// texts that come again and again, as the names of a query's fields do. This host's own.
SG_API BSTR sgShareBstr(BSTR text);
// Characters without the final zero; 0 for null.
SG_API size_t SysStringLen(const wchar_t* text);

// What VariantClear and VariantCopy answer besides S_OK.
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);

// Makes `variant` VT_EMPTY without looking at what it held.
inline void VariantInit(VARIANT* variant) {
    variant->vt = VT_EMPTY;
    variant->cyVal.int64 = 0;
}

// True when the variant owns memory: a string or an array.
inline bool variantOwnsMemory(const VARIANT& variant) {
    return variant.vt == VT_BSTR || (variant.vt & VT_ARRAY) != 0;
}

// Releases what the variant holds and makes it VT_EMPTY.
SG_API HRESULT VariantClear(VARIANT* variant);

// Clears `target` and gives it a copy of `source` with strings and arrays of its own. E_OUTOFMEMORY
// leaves `target` empty.
SG_API HRESULT VariantCopy(VARIANT* target, const VARIANT* source);

// The characters of a VT_BSTR; empty for every other type. A view into the variant.
inline std::wstring_view variantText(const VARIANT& variant) {
    if (variant.vt != VT_BSTR || variant.bstrVal == nullptr) return {};
    return {variant.bstrVal, SysStringLen(variant.bstrVal)};
}
