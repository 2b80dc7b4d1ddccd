#include "bridge/marshal_variants.h"

#include <cmath>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/lisp/external_functions.h"
#include "platform/variant/date_text.h"

namespace sg {
namespace {

bool isMarker(const VARIANT& variant, std::wstring_view marker) {
    return variant.vt == VT_BSTR && variantText(variant) == marker;
}

resbuf* newNode(int type) {
    resbuf* node = acutNewRb(type);
    if (node == nullptr) throw std::bad_alloc();
    return node;
}

resbuf* newLong(int32_t value) {
    resbuf* node = newNode(RTLONG);
    node->resval.rlong = value;
    return node;
}

resbuf* newReal(double value) {
    resbuf* node = newNode(RTREAL);
    node->resval.rreal = std::isnan(value) ? 0.0 : value;
    return node;
}

resbuf* newText(std::wstring_view text) {
    wchar_t* copy = acutNewString(text.data(), text.size());
    if (copy == nullptr) throw std::bad_alloc();
    resbuf* node = acutNewRb(RTSTR);
    if (node == nullptr) {
        acutDelString(copy);
        throw std::bad_alloc();
    }
    node->resval.rstring = copy;
    return node;
}

resbuf* newDateText(double date) {
    const std::optional<std::wstring> text = formatDate(date, sgUserLocale());
    return newText(text ? trimmedRight(*text) : std::wstring_view(L"Invalid DateTime"));
}

std::wstring_view trimmedText(const VARIANT& variant, bool trim) {
    const std::wstring_view text = variantText(variant);
    if (trim) return trimmedRight(text);
    return text == L" " ? std::wstring_view() : text;
}

// The text that stands for a structural node; empty for any other node.
std::wstring_view markerOf(const resbuf& node) {
    switch (node.restype) {
        case RTLB:
            return kListBeginMarker;
        case RTLE:
            return kListEndMarker;
        case RTDOTE:
            return kDotMarker;
        default:
            return {};
    }
}

const resbuf* skipStructure(const resbuf* node) {
    while (node != nullptr && !markerOf(*node).empty())
        node = node->rbnext;
    return node;
}

// The value that follows a name, past the dot of a dotted pair; VT_NULL at a list's end. False when
// there is none or it has no variant. `node` moves past the value in either case.
bool takePairValue(const resbuf*& node, COleVariant& value) {
    while (node != nullptr && node->restype == RTDOTE)
        node = node->rbnext;
    if (node == nullptr) return false;
    const resbuf& valueNode = *node;
    node = node->rbnext;
    if (valueNode.restype == RTLE) {
        value = COleVariant::null();
        return true;
    }
    return resbufToVariant(valueNode, value);
}

}  // namespace

bool isListBeginMarker(const VARIANT& variant) {
    return isMarker(variant, kListBeginMarker);
}

bool isListEndMarker(const VARIANT& variant) {
    return isMarker(variant, kListEndMarker);
}

bool isNewRecordMarker(const VARIANT& variant) {
    return isMarker(variant, kNewRecordMarker);
}

bool isVariantTrue(const VARIANT& variant) {
    if (variant.vt == VT_BOOL) return variant.boolVal != VARIANT_FALSE;
    return variant.vt != VT_EMPTY;
}

bool resbufToVariant(const resbuf& node, COleVariant& variant) {
    switch (node.restype) {
        case RTREAL:
            variant = COleVariant::fromDouble(node.resval.rreal);
            return true;
        case RTSHORT:
            variant = COleVariant::fromInt32(node.resval.rint);
            return true;
        case RTLONG:
            variant = COleVariant::fromInt32(node.resval.rlong);
            return true;
        case RTSTR:
            variant =
                COleVariant::fromString(node.resval.rstring == nullptr ? L"" : node.resval.rstring);
            return true;
        case RTNIL:
            variant.Clear();
            return true;
        case RTT:
            variant = COleVariant::fromBool(true);
            return true;
        default:
            return false;
    }
}

resbuf* variantToResbuf(const VARIANT& variant, bool trim) {
    switch (variant.vt) {
        case VT_I2:
            return newLong(variant.iVal);
        case VT_I4:
            return newLong(variant.lVal);
        case VT_UI1:
            return newLong(variant.bVal);
        case VT_BOOL:
            return newLong(variant.boolVal == VARIANT_FALSE ? 0 : -1);
        case VT_R4:
            return newReal(variant.fltVal);
        case VT_R8:
            return newReal(variant.dblVal);
        case VT_DATE:
            return newDateText(variant.date);
        case VT_BSTR:
            return newText(trimmedText(variant, trim));
        default:
            return newNode(RTNIL);
    }
}

bool listToVariantArray(const resbuf* list, COleSafeArray& array) {
    std::vector<COleVariant> items;
    bool complete = true;
    for (const resbuf* node = list; node != nullptr; node = node->rbnext) {
        const std::wstring_view marker = markerOf(*node);
        COleVariant item;
        if (!marker.empty()) {
            items.push_back(COleVariant::fromString(marker));
        } else if (resbufToVariant(*node, item)) {
            items.push_back(std::move(item));
        } else {
            complete = false;
        }
    }
    if (complete) array.CreateFromVariants(std::move(items));
    return complete;
}

bool pairsToVariantArray(const resbuf* list, COleSafeArray& array) {
    std::vector<COleVariant> items;
    bool complete = true;
    const resbuf* node = skipStructure(list);
    // The walk goes on after a failure, so that the whole list has been looked at.
    for (; node != nullptr; node = skipStructure(node)) {
        const resbuf& nameNode = *node;
        node = node->rbnext;
        if (nameNode.restype != RTSTR) {
            acedRetNil();
            complete = false;
            continue;
        }
        COleVariant name, value;
        resbufToVariant(nameNode, name);
        if (!takePairValue(node, value)) {
            complete = false;
            continue;
        }
        items.push_back(std::move(name));
        items.push_back(std::move(value));
    }
    if (!complete || items.empty()) return false;
    array.CreateFromVariants(std::move(items));
    return true;
}

}  // namespace sg
