#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/variant/ole_variant.h"

// An array with one dimension, of variants or of bytes. Only the run of its element type is used.
struct SAFEARRAY {
    VARTYPE elementType = VT_VARIANT;  // VT_VARIANT or VT_UI1
    int32_t lowerBound = 0;
    std::vector<COleVariant> variants;
    std::vector<uint8_t> bytes;

    size_t size() const { return elementType == VT_UI1 ? bytes.size() : variants.size(); }
};

// A VARIANT that holds an array of variants or of bytes, or none (VT_EMPTY). It owns the array;
// moving it copies no element.
class COleSafeArray : public VARIANT {
  public:
    COleSafeArray() noexcept { VariantInit(this); }
    COleSafeArray(const COleSafeArray& source) : COleSafeArray() { *this = source; }
    COleSafeArray(COleSafeArray&& source) noexcept : VARIANT(source) { VariantInit(&source); }
    // Takes the array out of `source`, which is left VT_EMPTY; none when it holds no array.
    explicit COleSafeArray(COleVariant&& source) noexcept : COleSafeArray() {
        if ((source.vt & VT_ARRAY) != 0) static_cast<VARIANT&>(*this) = source.release();
    }
    ~COleSafeArray() { Clear(); }

    COleSafeArray& operator=(const COleSafeArray& source) {
        if (VariantCopy(this, &source) != S_OK) throw std::bad_alloc();
        return *this;
    }
    COleSafeArray& operator=(COleSafeArray&& source) noexcept {
        std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(source));
        return *this;
    }

    // Make the array from what a vector holds, without copying its elements. What was held before
    // is released.
    void CreateFromVariants(std::vector<COleVariant> elements, int32_t lowerBound = 0) {
        create(SAFEARRAY{VT_VARIANT, lowerBound, std::move(elements), {}});
    }
    void CreateFromBytes(std::vector<uint8_t> elements, int32_t lowerBound = 0) {
        create(SAFEARRAY{VT_UI1, lowerBound, {}, std::move(elements)});
    }

    void Clear() noexcept { VariantClear(this); }

    bool HasArray() const { return (vt & VT_ARRAY) != 0 && parray != nullptr; }
    // 0 without an array.
    size_t GetOneDimSize() const { return HasArray() ? parray->size() : 0; }
    // The first and the last index; the last is below the first when there is no element.
    int32_t GetLBound() const { return HasArray() ? parray->lowerBound : 0; }
    int32_t GetUBound() const {
        return static_cast<int32_t>(GetLBound() + static_cast<int64_t>(GetOneDimSize()) - 1);
    }

    // The element at an index between the bounds, in place; std::out_of_range outside them, and for
    // an array of another element type.
    COleVariant& GetElement(int32_t index) {
        return const_cast<COleVariant&>(std::as_const(*this).GetElement(index));
    }
    const COleVariant& GetElement(int32_t index) const {
        const std::span<const COleVariant> all = Variants();
        const int64_t offset = static_cast<int64_t>(index) - GetLBound();
        if (offset < 0 || offset >= static_cast<int64_t>(all.size())) {
            throw std::out_of_range("COleSafeArray: index outside the bounds");
        }
        return all[static_cast<size_t>(offset)];
    }

    // All elements in place, from the lower to the upper bound; empty for another element type.
    std::span<const COleVariant> Variants() const {
        if (!HasArray() || vt != (VT_ARRAY | VT_VARIANT)) return {};
        return parray->variants;
    }
    std::span<const uint8_t> Bytes() const {
        if (!HasArray() || vt != (VT_ARRAY | VT_UI1)) return {};
        return parray->bytes;
    }

    // Gives the array away as a variant and holds none afterwards.
    COleVariant Detach() noexcept { return COleVariant::adopt(*this); }

  private:
    void create(SAFEARRAY content) {
        SAFEARRAY* made = new SAFEARRAY(std::move(content));
        Clear();
        vt = static_cast<VARTYPE>(VT_ARRAY | made->elementType);
        parray = made;
    }
};
