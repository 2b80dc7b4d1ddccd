#include "support/byte_list_text.h"

#include <algorithm>
#include <limits>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr int32_t kMostBytes = 1 << 20;

bool isSpace(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

// The part in front of the next comma, which is taken off `rest` with it.
std::wstring_view nextPart(std::wstring_view& rest) {
    const size_t comma = std::min(rest.find(L','), rest.size());
    const std::wstring_view part = rest.substr(0, comma);
    rest.remove_prefix(std::min(comma + 1, rest.size()));
    return part;
}

}  // namespace

int32_t legacyInteger(std::wstring_view text) {
    while (!text.empty() && isSpace(text[0]))
        text.remove_prefix(1);
    const bool isNegative = text.starts_with(L'-');
    if (isNegative || text.starts_with(L'+')) text.remove_prefix(1);
    constexpr int64_t kBeyond = int64_t(std::numeric_limits<int32_t>::max()) + 1;
    int64_t value = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') break;
        value = std::min(value * 10 + (c - L'0'), kBeyond);
    }
    if (isNegative) return static_cast<int32_t>(-value);
    return static_cast<int32_t>(std::min(value, kBeyond - 1));
}

std::wstring byteListText(std::span<const uint8_t> bytes) {
    std::wstring text = std::to_wstring(bytes.size());
    for (const uint8_t byte : bytes)
        text += L',' + std::to_wstring(byte);
    return text;
}

std::optional<std::vector<uint8_t>> parseByteListText(std::wstring_view text) {
    const int32_t count = legacyInteger(nextPart(text));
    if (count < 0 || count > kMostBytes) return std::nullopt;
    std::vector<uint8_t> bytes(static_cast<size_t>(count));
    for (size_t i = 0; i < bytes.size() && !text.empty(); ++i)
        bytes[i] = static_cast<uint8_t>(legacyInteger(nextPart(text)));
    return bytes;
}

std::vector<uint8_t> clippedBytes(std::wstring_view text) {
    const std::u16string units = toUtf16(text);
    std::vector<uint8_t> bytes(units.size());
    std::transform(units.begin(), units.end(), bytes.begin(),
                   [](char16_t unit) { return static_cast<uint8_t>(std::min<int>(unit, 255)); });
    return bytes;
}

}  // namespace sg
