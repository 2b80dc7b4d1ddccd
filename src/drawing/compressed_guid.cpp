#include "drawing/compressed_guid.h"

#include <algorithm>
#include <array>

namespace sg {
namespace {

constexpr wchar_t kDigits[] = L"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";

std::array<uint8_t, 16> bytesOf(const GUID& guid) {
    std::array<uint8_t, 16> bytes = {
        static_cast<uint8_t>(guid.Data1 >> 24), static_cast<uint8_t>(guid.Data1 >> 16),
        static_cast<uint8_t>(guid.Data1 >> 8),  static_cast<uint8_t>(guid.Data1),
        static_cast<uint8_t>(guid.Data2 >> 8),  static_cast<uint8_t>(guid.Data2),
        static_cast<uint8_t>(guid.Data3 >> 8),  static_cast<uint8_t>(guid.Data3)};
    std::copy_n(guid.Data4, sizeof(guid.Data4), bytes.begin() + 8);
    return bytes;
}

void appendDigits(std::wstring& text, uint32_t number, int count) {
    for (int digit = count - 1; digit >= 0; --digit)
        text += kDigits[number >> (6 * digit) & 63];
}

}  // namespace

std::wstring compressedGuid(const GUID& guid) {
    const std::array<uint8_t, 16> bytes = bytesOf(guid);
    std::wstring text;
    appendDigits(text, bytes[0], 2);
    for (size_t i = 1; i < bytes.size(); i += 3) {
        const uint32_t number = uint32_t{bytes[i]} << 16 | bytes[i + 1] << 8 | bytes[i + 2];
        appendDigits(text, number, 4);
    }
    return text;
}

}  // namespace sg
