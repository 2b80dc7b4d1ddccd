#include "app/shown_value.h"

#include <string_view>
#include <variant>

#include "host/jet/values/value_convert.h"

namespace sg::app {
namespace {

struct ShownText {
    std::wstring operator()(bool value) const { return value ? L"True" : L"False"; }
    std::wstring operator()(jet::Date value) const {
        constexpr std::wstring_view midnight = L" 00:00:00";
        const std::wstring text = jet::toText(value);
        return text.ends_with(midnight) ? text.substr(0, text.size() - midnight.size()) : text;
    }
    std::wstring operator()(jet::Currency value) const { return jet::toText(value); }
    std::wstring operator()(const jet::Bytes& value) const {
        constexpr wchar_t digits[] = L"0123456789ABCDEF";
        std::wstring text;
        for (const uint8_t byte : value) {
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }
    template <class T>
    std::wstring operator()(const T& value) const {
        return jet::toInvariantText(value);
    }
};

}  // namespace

std::wstring shownValue(const jet::Value& value) {
    return std::visit(ShownText(), value);
}

bool isNumber(jet::ColumnType type) {
    switch (type) {
        case jet::ColumnType::Byte:
        case jet::ColumnType::Integer:
        case jet::ColumnType::Long:
        case jet::ColumnType::Currency:
        case jet::ColumnType::Single:
        case jet::ColumnType::Double:
        case jet::ColumnType::Numeric:
        case jet::ColumnType::BigInteger:
            return true;
        default:
            return false;
    }
}

}  // namespace sg::app
