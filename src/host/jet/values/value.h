#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/export.h"
#include "host/jet/format/format.h"

// Values as rows hold them, one C++ type for each that the format tells apart.
namespace sg::jet {

// Ten-thousandths of the currency's unit.
struct Currency {
    int64_t scaled = 0;
    auto operator<=>(const Currency&) const = default;
};

// Days since 1899-12-30; the fraction is the time of day and counts forward also before that day
// (-1.25 is 1899-12-29 06:00).
struct Date {
    double days = 0;
    bool operator==(const Date&) const = default;
};

// In the byte order of the file: the first three groups are little-endian numbers.
struct Guid {
    std::array<uint8_t, 16> bytes{};
    auto operator<=>(const Guid&) const = default;
};

// A number of at most 28 digits: magnitude / 10^scale.
struct Decimal {
    bool negative = false;
    uint8_t scale = 0;
    std::array<uint32_t, 4> words{};  // of the magnitude, most significant first
    bool operator==(const Decimal&) const = default;
};

using Bytes = std::vector<uint8_t>;

// std::monostate is Null. A Boolean, Byte, Integer and Long column gives bool, uint8_t, int16_t and
// int32_t, a Complex column its int32_t key, a BigInteger column int64_t; Text and Memo give
// std::wstring, Binary and Ole Bytes. A DateTimeExtended column gives a Date, which holds
// its day and its time to about a microsecond.
using Value = std::variant<std::monostate, bool, uint8_t, int16_t, int32_t, int64_t, Currency,
                           float, double, Date, std::wstring, Bytes, Guid, Decimal>;

inline bool isNull(const Value& value) {
    return value.index() == 0;
}

// A date taken apart, rounded to whole seconds.
struct DateParts {
    int year = 0;
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Dates beyond the years 100 to 9999, and what is no number, give the parts of the nearest end.
SG_API DateParts partsOf(Date date);

// "2017-01-31 14:30:00".
SG_API std::wstring toText(Date date);
// "{00112233-4455-6677-8899-AABBCCDDEEFF}".
SG_API std::wstring toText(const Guid& guid);
// All digits of the scale: "12.3400", "-0.05".
SG_API std::wstring toText(Currency currency);
SG_API std::wstring toText(const Decimal& decimal);

}  // namespace sg::jet
