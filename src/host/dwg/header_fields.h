#pragma once

#include <cstdint>
#include <span>

#include "platform/db/filers.h"

namespace sg::dwg {

// How a field of the header section is coded.
enum class Coding : uint8_t {
    flag,       // B
    byte,       // RC
    whole,      // BS
    wholeLong,  // BL
    longLong,   // BLL
    real,       // BD
    point,      // 3BD
    flatPoint,  // 2RD
    text,       // T
    color,      // CMC
    time,       // BL days and BL milliseconds
    seed,       // H among the data: the next handle
    pointer,    // H
    owner,      // H
    weights,    // BL: several variables in one number
    plotStyle,  // BS; a pointer behind it when it is 3
};

// A field of the header section. The name is that of a header variable; with "*" it is something
// else of the drawing; without a name it has no known meaning, and a new file has `standard` there.
struct HeaderField {
    Coding coding;
    const wchar_t* name;
    int16_t since = AcDb::kDHL_1012;
    int16_t until = AcDb::kDHL_CURRENT;
    double standard = 0;
};

// All fields in their order.
std::span<const HeaderField> headerFields();

}  // namespace sg::dwg
