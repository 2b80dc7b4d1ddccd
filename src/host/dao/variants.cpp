#include "host/dao/variants.h"

#include <string>

#include "host/jet/format/error.h"
#include "platform/variant/safe_array.h"

namespace sg::dao {
namespace {

COleVariant bytesVariant(const jet::Bytes& bytes) {
    COleSafeArray array;
    array.CreateFromBytes(bytes);
    return COleVariant::adopt(array);
}

// 28 digits fit in 96 bits; the most significant of the four words is never used.
COleVariant decimalVariant(const jet::Decimal& decimal) {
    COleVariant result;
    result.vt = VT_DECIMAL;
    result.decScale = decimal.scale;
    result.decSign = decimal.negative ? 0x80 : 0;
    result.decHi32 = decimal.words[1];
    result.decLo64 = uint64_t(decimal.words[2]) << 32 | decimal.words[3];
    return result;
}

jet::Decimal decimalOf(const VARIANT& variant) {
    constexpr uint8_t largestScale = 28;
    if (variant.decScale > largestScale) throw jet::Error(jet::ConversionError);
    jet::Decimal decimal;
    decimal.scale = variant.decScale;
    decimal.negative = (variant.decSign & 0x80) != 0;
    decimal.words = {0, variant.decHi32, static_cast<uint32_t>(variant.decLo64 >> 32),
                     static_cast<uint32_t>(variant.decLo64)};
    return decimal;
}

struct ToVariant {
    COleVariant operator()(std::monostate) const { return COleVariant::null(); }
    COleVariant operator()(bool value) const { return COleVariant::fromBool(value); }
    COleVariant operator()(uint8_t value) const { return COleVariant::fromByte(value); }
    COleVariant operator()(int16_t value) const { return COleVariant::fromInt16(value); }
    COleVariant operator()(int32_t value) const { return COleVariant::fromInt32(value); }
    // The engine of this version has no type for it; a double holds what counts are made of.
    COleVariant operator()(int64_t value) const {
        return COleVariant::fromDouble(static_cast<double>(value));
    }
    COleVariant operator()(jet::Currency value) const {
        return COleVariant::fromCurrency({value.scaled});
    }
    COleVariant operator()(float value) const { return COleVariant::fromFloat(value); }
    COleVariant operator()(double value) const { return COleVariant::fromDouble(value); }
    COleVariant operator()(jet::Date value) const { return COleVariant::fromDate(value.days); }
    COleVariant operator()(const std::wstring& value) const {
        return COleVariant::fromString(value);
    }
    COleVariant operator()(const jet::Bytes& value) const { return bytesVariant(value); }
    COleVariant operator()(const jet::Guid& value) const {
        return COleVariant::fromString(L"{guid " + jet::toText(value) + L"}");
    }
    COleVariant operator()(const jet::Decimal& value) const { return decimalVariant(value); }
};

}  // namespace

COleVariant toVariant(const jet::Value& value) {
    return std::visit(ToVariant{}, value);
}

jet::Value fromVariant(const VARIANT& variant) {
    switch (variant.vt) {
        case VT_EMPTY:
        case VT_NULL:
            return {};
        case VT_I2:
            return variant.iVal;
        case VT_I4:
            return variant.lVal;
        case VT_R4:
            return variant.fltVal;
        case VT_R8:
            return variant.dblVal;
        case VT_CY:
            return jet::Currency{variant.cyVal.int64};
        case VT_DATE:
            return jet::Date{variant.date};
        case VT_BSTR:
            return std::wstring(variantText(variant));
        case VT_BOOL:
            return variant.boolVal != VARIANT_FALSE;
        case VT_UI1:
            return variant.bVal;
        case VT_DECIMAL:
            return decimalOf(variant);
        case VT_ARRAY | VT_UI1:
            if (variant.parray != nullptr) return variant.parray->bytes;
            return {};
        default:
            throw jet::Error(jet::ConversionError);
    }
}

}  // namespace sg::dao
