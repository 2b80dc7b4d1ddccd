#include "host/jet/value_codec.h"

#include <algorithm>

#include "host/jet/text_codec.h"

namespace sg::jet {
namespace {

// The alternative T of `value`, kept when it is there already.
template <class T>
T& hold(Value& value) {
    if (T* held = std::get_if<T>(&value)) {
        return *held;
    }
    return value.emplace<T>();
}

Guid decodeGuid(ByteView bytes) {
    Guid guid;
    const ByteView all = bytes.sub(0, guid.bytes.size());
    std::copy(all.begin(), all.end(), guid.bytes.begin());
    return guid;
}

// A sign byte and four words, the most significant first.
Decimal decodeDecimal(ByteView bytes, uint8_t scale) {
    Decimal decimal;
    decimal.negative = bytes.get8(0) != 0;
    decimal.scale = scale;
    for (size_t i = 0; i < decimal.words.size(); ++i) {
        decimal.words[i] = bytes.get32(1 + 4 * i);
    }
    return decimal;
}

double decimalDigits(ByteView bytes, size_t offset, size_t count) {
    double number = 0;
    for (const uint8_t digit : bytes.sub(offset, count)) {
        number = number * 10 + (digit - '0');
    }
    return number;
}

// Decimal text "DAYS:SECONDSFRACTION:7": 19 digits of days since 0001-01-01, 12 of seconds and 7 of
// their fraction.
Date decodeExtendedDate(ByteView bytes) {
    constexpr double daysToEpoch = 693593;  // from 0001-01-01 to 1899-12-30
    const double days = decimalDigits(bytes, 0, 19) - daysToEpoch;
    const double seconds = decimalDigits(bytes, 20, 12) + decimalDigits(bytes, 32, 7) * 1e-7;
    const double time = seconds / 86400;
    return {days < 0 ? days - time : days + time};
}

}  // namespace

void decodeValue(ColumnType type, ByteView bytes, const Format& format, uint8_t scale,
                 Value& into) {
    switch (type) {
        case ColumnType::Boolean:
            into = bytes.get8(0) != 0;
            return;
        case ColumnType::Byte:
            into = bytes.get8(0);
            return;
        case ColumnType::Integer:
            into = static_cast<int16_t>(bytes.get16(0));
            return;
        case ColumnType::Long:
        case ColumnType::Complex:
            into = static_cast<int32_t>(bytes.get32(0));
            return;
        case ColumnType::BigInteger:
            into = static_cast<int64_t>(bytes.get64(0));
            return;
        case ColumnType::Currency:
            into = Currency{static_cast<int64_t>(bytes.get64(0))};
            return;
        case ColumnType::Single:
            into = bytes.getFloat(0);
            return;
        case ColumnType::Double:
            into = bytes.getDouble(0);
            return;
        case ColumnType::Date:
            into = Date{bytes.getDouble(0)};
            return;
        case ColumnType::DateTimeExtended:
            into = decodeExtendedDate(bytes);
            return;
        case ColumnType::Guid:
            into = decodeGuid(bytes);
            return;
        case ColumnType::Numeric:
            into = decodeDecimal(bytes, scale);
            return;
        case ColumnType::Text:
        case ColumnType::Memo:
            decodeText(bytes, format, hold<std::wstring>(into));
            return;
        case ColumnType::Binary:
        case ColumnType::Ole:
            break;
    }
    hold<Bytes>(into).assign(bytes.begin(), bytes.end());
}

}  // namespace sg::jet
