#include "platform/variant/variant.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>
#include <new>

#include "platform/variant/safe_array.h"

namespace {

// Stands in front of the characters, and is as long as the allocator's alignment is for them.
struct Prefix {
    uint32_t length;
    uint32_t sharers;  // holders besides the first
};
constexpr size_t kMaximumLength = std::numeric_limits<uint32_t>::max();

Prefix* prefixOf(BSTR text) {
    return reinterpret_cast<Prefix*>(reinterpret_cast<char*>(text) - sizeof(Prefix));
}

}  // namespace

BSTR SysAllocString(const wchar_t* text) {
    return text == nullptr ? nullptr : SysAllocStringLen(text, std::wcslen(text));
}

BSTR SysAllocStringLen(const wchar_t* text, size_t length) {
    if (length > kMaximumLength) return nullptr;
    const size_t bytes = length * sizeof(wchar_t);
    char* block = static_cast<char*>(std::malloc(sizeof(Prefix) + bytes + sizeof(wchar_t)));
    if (block == nullptr) return nullptr;
    new (block) Prefix{static_cast<uint32_t>(length), 0};
    BSTR result = reinterpret_cast<BSTR>(block + sizeof(Prefix));
    if (text == nullptr) {
        std::memset(result, 0, bytes);
    } else if (bytes != 0) {
        std::memcpy(result, text, bytes);
    }
    result[length] = L'\0';
    return result;
}

BSTR sgShareBstr(BSTR text) {
    if (text == nullptr) return nullptr;
    Prefix& prefix = *prefixOf(text);
    if (prefix.sharers == std::numeric_limits<uint32_t>::max()) {
        return SysAllocStringLen(text, prefix.length);
    }
    ++prefix.sharers;
    return text;
}

void SysFreeString(BSTR text) {
    if (text == nullptr) return;
    Prefix* const prefix = prefixOf(text);
    if (prefix->sharers != 0) {
        --prefix->sharers;
    } else {
        std::free(prefix);
    }
}

size_t SysStringLen(const wchar_t* text) {
    return text == nullptr ? 0 : prefixOf(const_cast<BSTR>(text))->length;
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
