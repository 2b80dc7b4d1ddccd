#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace sg::dxf {

// What the groups of a code hold. Handles are written in hexadecimal digits: `handle` is one that
// stands for itself, `object` one that refers to an object.
enum class ValueKind : uint8_t {
    text,
    handle,
    object,
    real,
    whole16,
    whole32,
    whole64,
    boolean,
    binary,
    unknown,  // no program uses such a code; a text
};

constexpr bool isWhole(ValueKind kind) {
    return kind >= ValueKind::whole16 && kind <= ValueKind::boolean;
}

namespace detail {

struct KindRange {
    int16_t first, last;
    ValueKind kind;
};

inline constexpr KindRange kKindRanges[] = {
    {0, 4, ValueKind::text},          {5, 5, ValueKind::handle},
    {6, 9, ValueKind::text},          {10, 59, ValueKind::real},
    {60, 79, ValueKind::whole16},     {90, 99, ValueKind::whole32},
    {100, 102, ValueKind::text},      {105, 105, ValueKind::handle},
    {110, 149, ValueKind::real},      {160, 169, ValueKind::whole64},
    {170, 179, ValueKind::whole16},   {210, 239, ValueKind::real},
    {270, 289, ValueKind::whole16},   {290, 299, ValueKind::boolean},
    {300, 309, ValueKind::text},      {310, 319, ValueKind::binary},
    {320, 329, ValueKind::handle},    {330, 369, ValueKind::object},
    {370, 389, ValueKind::whole16},   {390, 399, ValueKind::object},
    {400, 409, ValueKind::whole16},   {410, 419, ValueKind::text},
    {420, 429, ValueKind::whole32},   {430, 439, ValueKind::text},
    {440, 459, ValueKind::whole32},   {460, 469, ValueKind::real},
    {470, 479, ValueKind::text},      {480, 481, ValueKind::object},
    {999, 1003, ValueKind::text},     {1004, 1004, ValueKind::binary},
    {1005, 1005, ValueKind::handle},  {1006, 1009, ValueKind::text},
    {1010, 1059, ValueKind::real},    {1060, 1070, ValueKind::whole16},
    {1071, 1071, ValueKind::whole32},
};
inline constexpr int kLastCode = 1071;

constexpr std::array<ValueKind, kLastCode + 1> makeKinds() {
    std::array<ValueKind, kLastCode + 1> kinds{};
    for (ValueKind& kind : kinds)
        kind = ValueKind::unknown;
    for (const KindRange& range : kKindRanges) {
        for (int code = range.first; code <= range.last; ++code)
            kinds[static_cast<size_t>(code)] = range.kind;
    }
    return kinds;
}
inline constexpr auto kKinds = makeKinds();

}  // namespace detail

constexpr ValueKind kindOf(int code) {
    return code >= 0 && code <= detail::kLastCode ? detail::kKinds[static_cast<size_t>(code)]
                                                  : ValueKind::unknown;
}

// One group of a drawing file. The text views the file's bytes: the value's line, or what stands
// for it in a binary file.
struct Group {
    int16_t code = 0;
    ValueKind kind = ValueKind::text;
    bool isMalformed = false;  // the value is not of its kind
    bool isHex = false;        // binary data that stands as hexadecimal digits
    std::string_view text;
    union {
        double real = 0;
        int64_t whole;
        uint64_t handle;  // of handle and object
    };

    bool is(int wanted, std::string_view value) const { return code == wanted && text == value; }
};

}  // namespace sg::dxf
