#pragma once

#include <string>

#include "host/jet/index/sort_order.h"

namespace sg::jet {

// A key as hexadecimal digits, two a byte.
inline std::string hex(const KeyBytes& bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace sg::jet
