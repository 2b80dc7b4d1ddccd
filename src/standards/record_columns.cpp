#include "standards/record_columns.h"

#include <cmath>
#include <limits>

#include "standards/standards_record.h"

namespace sg {
namespace {

double realOf(const VARIANT& value) {
    switch (value.vt) {
        case VT_I4:
            return value.lVal;
        case VT_I2:
            return value.iVal;
        case VT_UI1:
            return value.bVal;
        case VT_R8:
            return value.dblVal;
        case VT_R4:
            return value.fltVal;
        default:
            return 0;
    }
}

// The whole part; 0 for what the type does not hold.
template <class Integer>
Integer integerOf(const VARIANT& value) {
    const double whole = std::trunc(realOf(value));
    const bool fits = whole >= std::numeric_limits<Integer>::min() &&
                      whole <= std::numeric_limits<Integer>::max();
    return fits ? static_cast<Integer>(whole) : Integer{0};
}

}  // namespace

RecordColumn::RecordColumn(StandardsRecord& record, const wchar_t* name) : name_(name) {
    record.columns_.push_back(this);
}

int32_t columnValue(const VARIANT& value, int32_t) {
    return integerOf<int32_t>(value);
}

int16_t columnValue(const VARIANT& value, int16_t) {
    return integerOf<int16_t>(value);
}

bool columnValue(const VARIANT& value, bool) {
    return value.vt == VT_BOOL ? value.boolVal == VARIANT_TRUE : realOf(value) == -1;
}

double columnValue(const VARIANT& value, double) {
    return realOf(value);
}

std::wstring columnValue(const VARIANT& value, const std::wstring&) {
    return std::wstring(variantText(value));
}

COleVariant columnVariant(int32_t value) {
    return COleVariant::fromInt32(value);
}

COleVariant columnVariant(int16_t value) {
    return COleVariant::fromInt16(value);
}

COleVariant columnVariant(bool value) {
    return COleVariant::fromBool(value);
}

COleVariant columnVariant(double value) {
    return COleVariant::fromDouble(value);
}

COleVariant columnVariant(const std::wstring& value) {
    return COleVariant::fromString(value);
}

}  // namespace sg
