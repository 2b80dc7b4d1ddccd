#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace sg::render {

// Bytes as text of 64 letters, four for three bytes.
inline std::string base64(std::string_view bytes) {
    constexpr const char* kLetters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t at = 0; at < bytes.size(); at += 3) {
        unsigned bits = 0;
        for (size_t i = at; i < at + 3; ++i)
            bits = bits << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u);
        const size_t letters = std::min<size_t>(bytes.size() - at, 3) + 1;
        for (size_t i = 0; i < 4; ++i)
            text += i < letters ? kLetters[bits >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

}  // namespace sg::render
