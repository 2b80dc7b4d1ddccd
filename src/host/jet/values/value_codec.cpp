#include "host/jet/values/value_codec.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "host/jet/format/error.h"
#include "host/jet/values/text_codec.h"

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

constexpr double daysToEpoch = 693593;  // from 0001-01-01 to 1899-12-30

// Decimal text "DAYS:SECONDSFRACTION:7": 19 digits of days since 0001-01-01, 12 of seconds and 7 of
// their fraction.
Date decodeExtendedDate(ByteView bytes) {
    const double days = decimalDigits(bytes, 0, 19) - daysToEpoch;
    const double seconds = decimalDigits(bytes, 20, 12) + decimalDigits(bytes, 32, 7) * 1e-7;
    const double time = seconds / 86400;
    return {days < 0 ? days - time : days + time};
}

[[noreturn]] void refuse(const Column& column, const wchar_t* why) {
    throw Error(ConversionError, {column.name}, {.detail = L"column " + column.name + L" " + why});
}

template <class T>
const T& require(const Column& column, const Value& value) {
    const T* held = std::get_if<T>(&value);
    if (held == nullptr) {
        refuse(column, L"has values of another type");
    }
    return *held;
}

// A number's bytes as they stand in memory, which is little-endian (see ByteView).
template <class T>
void putNumber(T number, Bytes& bytes) {
    bytes.resize(sizeof(T));
    std::memcpy(bytes.data(), &number, sizeof(T));
}

// Whether the magnitude has no more than `precision` digits.
bool hasDigits(const Decimal& decimal, uint8_t precision) {
    std::array<uint64_t, 4> limit = {0, 0, 0, 1};
    for (unsigned i = 0; i < precision; ++i) {
        uint64_t carry = 0;
        for (size_t word = limit.size(); word-- > 0;) {
            carry += limit[word] * 10;
            limit[word] = carry & 0xffffffff;
            carry >>= 32;
        }
        if (carry != 0) {
            return true;
        }
    }
    return std::lexicographical_compare(decimal.words.begin(), decimal.words.end(), limit.begin(),
                                        limit.end());
}

void encodeDecimal(const Column& column, const Decimal& decimal, Bytes& bytes) {
    constexpr uint8_t negativeSign = 0x80;
    if (decimal.scale != column.scale || !hasDigits(decimal, column.precision)) {
        refuse(column, L"has no room for the number's digits");
    }
    const bool isZero = decimal.words == Decimal().words;
    bytes.resize(1 + sizeof(decimal.words));
    bytes[0] = decimal.negative && !isZero ? negativeSign : 0;
    std::memcpy(bytes.data() + 1, decimal.words.data(), sizeof(decimal.words));
}

// To the microsecond, which is what a Date holds.
void encodeExtendedDate(const Column& column, Date date, Bytes& bytes) {
    constexpr int64_t ticksOfDay = 86400'000'000;
    double day = std::trunc(date.days);
    auto ticks = static_cast<int64_t>(std::llround(std::abs(date.days - day) * double(ticksOfDay)));
    if (ticks == ticksOfDay) {
        ticks = 0;
        day += 1;
    }
    day += daysToEpoch;
    if (!(day >= 0 && day < 3652059)) {  // 0001-01-01 to 9999-12-31
        refuse(column, L"has no such date");
    }
    char text[64];
    const int length = std::snprintf(
        text, sizeof(text), "%019lld:%012lld%07lld:7", static_cast<long long>(day),
        static_cast<long long>(ticks / 1'000'000), static_cast<long long>(ticks % 1'000'000 * 10));
    bytes.assign(text, text + length + 1);
}

[[noreturn]] void refuseTooLong(const Column& column, size_t units) {
    throw Error(FieldTooSmall, {column.name},
                {.detail = L"column " + column.name + L" holds " + std::to_wstring(column.length) +
                           L" bytes and was given " + std::to_wstring(units)});
}

// A fixed column's texts have all the same size and so are never compressed.
void encodeColumnText(const Column& column, const std::wstring& text, Bytes& bytes) {
    // A compressed text needs less than it would plain; the column's length is of the plain form.
    if (2 * text.size() > column.length) {
        refuseTooLong(column, 2 * text.size());
    }
    encodeText(text, column.isCompressed() && !column.isFixed(), bytes);
    if (bytes.size() > column.length) {
        refuseTooLong(column, bytes.size());
    }
    if (column.isFixed()) {
        while (bytes.size() + 2 <= column.length) {
            bytes.push_back(' ');
            bytes.push_back(0);
        }
    }
}

void encodeColumnBytes(const Column& column, const Bytes& content, Bytes& bytes) {
    if (content.size() > column.length) {
        refuseTooLong(column, content.size());
    }
    bytes.assign(content.begin(), content.end());
    if (column.isFixed()) {
        bytes.resize(column.length);
    }
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

void encodeValue(const Column& column, const Value& value, const Format&, Bytes& bytes) {
    switch (column.type) {
        case ColumnType::Boolean:
            require<bool>(column, value);
            bytes.clear();
            return;
        case ColumnType::Byte:
            return putNumber(require<uint8_t>(column, value), bytes);
        case ColumnType::Integer:
            return putNumber(require<int16_t>(column, value), bytes);
        case ColumnType::Long:
        case ColumnType::Complex:
            return putNumber(require<int32_t>(column, value), bytes);
        case ColumnType::BigInteger:
            return putNumber(require<int64_t>(column, value), bytes);
        case ColumnType::Currency:
            return putNumber(require<Currency>(column, value).scaled, bytes);
        case ColumnType::Single:
            return putNumber(require<float>(column, value), bytes);
        case ColumnType::Double:
            return putNumber(require<double>(column, value), bytes);
        case ColumnType::Date:
            return putNumber(require<Date>(column, value).days, bytes);
        case ColumnType::DateTimeExtended:
            return encodeExtendedDate(column, require<Date>(column, value), bytes);
        case ColumnType::Guid:
            return putNumber(require<Guid>(column, value).bytes, bytes);
        case ColumnType::Numeric:
            return encodeDecimal(column, require<Decimal>(column, value), bytes);
        case ColumnType::Text:
            return encodeColumnText(column, require<std::wstring>(column, value), bytes);
        case ColumnType::Memo:
            return encodeText(require<std::wstring>(column, value), column.isCompressed(), bytes);
        case ColumnType::Ole:
            bytes = require<Bytes>(column, value);
            return;
        case ColumnType::Binary:
            break;
    }
    // Binary, and the types that are not known.
    encodeColumnBytes(column, require<Bytes>(column, value), bytes);
}

}  // namespace sg::jet
