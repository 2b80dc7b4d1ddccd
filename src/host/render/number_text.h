#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace sg::render {

// Appends a number to hundredths, without zeros at the end.
inline void appendHundredths(std::string& text, double value) {
    const int64_t hundredths = std::llround(value * 100);
    const int64_t size = std::abs(hundredths);
    if (hundredths < 0) text += '-';
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof(digits), size / 100).ptr);
    const int64_t rest = size % 100;
    if (rest == 0) return;
    text += '.';
    text += static_cast<char>('0' + rest / 10);
    if (rest % 10 != 0) text += static_cast<char>('0' + rest % 10);
}

}  // namespace sg::render
