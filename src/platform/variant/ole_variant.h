#pragma once

#include <cstdint>
#include <new>
#include <string_view>
#include <utility>

#include "platform/variant/variant.h"

// A VARIANT that initializes, copies and clears itself. It adds no field, so that a run of them is
// a run of VARIANTs. Copies throw std::bad_alloc when memory is exhausted; moves copy no text and
// leave VT_EMPTY behind.
class COleVariant : public VARIANT {
  public:
    COleVariant() noexcept { VariantInit(this); }
    COleVariant(const VARIANT& source) : COleVariant() { copyFrom(source); }
    COleVariant(const COleVariant& source) : COleVariant() { copyFrom(source); }
    COleVariant(COleVariant&& source) noexcept : VARIANT(source) { VariantInit(&source); }
    ~COleVariant() {
        if (variantOwnsMemory(*this)) VariantClear(this);
    }

    COleVariant& operator=(const VARIANT& source) {
        copyFrom(source);
        return *this;
    }
    COleVariant& operator=(const COleVariant& source) {
        copyFrom(source);
        return *this;
    }
    COleVariant& operator=(COleVariant&& source) noexcept {
        VARIANT taken = source;
        VariantInit(&source);
        if (variantOwnsMemory(*this)) VariantClear(this);
        static_cast<VARIANT&>(*this) = taken;
        return *this;
    }

    // One factory a type.
    static COleVariant null() noexcept { return COleVariant(VT_NULL); }
    static COleVariant fromInt16(int16_t value) noexcept {
        COleVariant result(VT_I2);
        result.iVal = value;
        return result;
    }
    static COleVariant fromInt32(int32_t value) noexcept {
        COleVariant result(VT_I4);
        result.lVal = value;
        return result;
    }
    static COleVariant fromByte(uint8_t value) noexcept {
        COleVariant result(VT_UI1);
        result.bVal = value;
        return result;
    }
    static COleVariant fromBool(bool value) noexcept {
        COleVariant result(VT_BOOL);
        result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
        return result;
    }
    static COleVariant fromFloat(float value) noexcept {
        COleVariant result(VT_R4);
        result.fltVal = value;
        return result;
    }
    static COleVariant fromDouble(double value) noexcept {
        COleVariant result(VT_R8);
        result.dblVal = value;
        return result;
    }
    static COleVariant fromDate(double days) noexcept {  // since 1899-12-30
        COleVariant result(VT_DATE);
        result.date = days;
        return result;
    }
    static COleVariant fromCurrency(CY value) noexcept {
        COleVariant result(VT_CY);
        result.cyVal = value;
        return result;
    }
    static COleVariant fromString(std::wstring_view text) {
        COleVariant result;
        result.bstrVal = SysAllocStringLen(text.data(), text.size());
        if (result.bstrVal == nullptr) throw std::bad_alloc();
        result.vt = VT_BSTR;
        return result;
    }

    // The string of `text`, a VT_BSTR, once more, as sgShareBstr tells.
    static COleVariant sharing(const COleVariant& text) {
        COleVariant result;
        result.bstrVal = sgShareBstr(text.bstrVal);
        result.vt = VT_BSTR;
        return result;
    }

    // Takes over what `source` owns, and gives what this one owns away; the giver is left VT_EMPTY.
    static COleVariant adopt(VARIANT& source) noexcept {
        COleVariant result;
        static_cast<VARIANT&>(result) = source;
        VariantInit(&source);
        return result;
    }
    VARIANT release() noexcept {
        VARIANT result = *this;
        VariantInit(this);
        return result;
    }

    void Clear() noexcept { VariantClear(this); }

  private:
    explicit COleVariant(VARTYPE type) noexcept : COleVariant() { vt = type; }

    void copyFrom(const VARIANT& source) {
        if (VariantCopy(this, &source) != S_OK) throw std::bad_alloc();
    }
};

static_assert(sizeof(COleVariant) == sizeof(VARIANT));
