#include "platform/variant/variant.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>
#include <new>

#include "platform/variant/safe_array.h"

namespace {

// The length stands in front of the characters, in a field as wide as the allocator's alignment.
constexpr size_t kPrefixBytes = sizeof(size_t);
constexpr size_t kMaximumLength =
    (std::numeric_limits<size_t>::max() - kPrefixBytes) / sizeof(wchar_t) - 1;

const char* prefixOf(const wchar_t* text) {
    return reinterpret_cast<const char*>(text) - kPrefixBytes;
}

}  // namespace

BSTR SysAllocString(const wchar_t* text) {
    return text == nullptr ? nullptr : SysAllocStringLen(text, std::wcslen(text));
}

BSTR SysAllocStringLen(const wchar_t* text, size_t length) {
    if (length > kMaximumLength) return nullptr;
    const size_t bytes = length * sizeof(wchar_t);
    char* block = static_cast<char*>(std::malloc(kPrefixBytes + bytes + sizeof(wchar_t)));
    if (block == nullptr) return nullptr;
    std::memcpy(block, &length, sizeof length);
    BSTR result = reinterpret_cast<BSTR>(block + kPrefixBytes);
    if (text == nullptr) {
        std::memset(result, 0, bytes);
    } else if (bytes != 0) {
        std::memcpy(result, text, bytes);
    }
    result[length] = L'\0';
    return result;
}

void SysFreeString(BSTR text) {
    if (text != nullptr) std::free(const_cast<char*>(prefixOf(text)));
}

size_t SysStringLen(const wchar_t* text) {
    if (text == nullptr) return 0;
    size_t length = 0;
    std::memcpy(&length, prefixOf(text), sizeof length);
    return length;
}

HRESULT VariantClear(VARIANT* variant) {
    if ((variant->vt & VT_ARRAY) != 0) {
        delete variant->parray;
    } else if (variant->vt == VT_BSTR) {
        SysFreeString(variant->bstrVal);
    }
    VariantInit(variant);
    return S_OK;
}

HRESULT VariantCopy(VARIANT* target, const VARIANT* source) {
    if (target == source) return S_OK;
    VariantClear(target);
    VARIANT copy = *source;
    if ((source->vt & VT_ARRAY) != 0 && source->parray != nullptr) {
        try {
            copy.parray = new SAFEARRAY(*source->parray);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    } else if (source->vt == VT_BSTR && source->bstrVal != nullptr) {
        copy.bstrVal = SysAllocStringLen(source->bstrVal, SysStringLen(source->bstrVal));
        if (copy.bstrVal == nullptr) return E_OUTOFMEMORY;
    }
    *target = copy;
    return S_OK;
}
