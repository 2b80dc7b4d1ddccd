#include "standards/layer_rules.h"

#include <fmt/xchar.h>

#include <algorithm>
#include <cwchar>

#include "base/text.h"

namespace sg {

bool hasInvalidLayerCharacter(const std::wstring& name) {
    return name.find_first_of(L"<>/\\'\":;?*|,=") != std::wstring::npos;
}

int16_t colorIndexOf(const std::wstring& text) {
    constexpr int32_t lowest = 1, highest = 255;
    return static_cast<int16_t>(std::clamp(wholeNumberIn(text), lowest, highest));
}

std::wstring shownLineweight(const std::optional<std::wstring>& stored) {
    if (!stored || stored->empty()) return kDefaultLineweight;
    return fixedNumber(wholeNumberIn(*stored) / 100.0, 2) + L" mm";
}

std::optional<std::wstring> storedLineweight(const std::wstring& shown) {
    if (shown == kDefaultLineweight || trimmed(shown).empty()) return std::nullopt;
    constexpr double lowest = INT32_MIN, highest = INT32_MAX;
    // Cut, not rounded; every weight of the list keeps its number.
    return std::to_wstring(
        static_cast<int32_t>(std::clamp(numberIn(shown) * 100.0, lowest, highest)));
}

std::wstring freeName(const std::wstring& name,
                      const std::function<bool(const std::wstring&)>& isTaken) {
    std::wstring free = name;
    for (int number = 1; isTaken(free); ++number)
        free = name + L" (" + std::to_wstring(number) + L")";
    return free;
}

std::wstring fixedNumber(double value, int digits) {
    return fmt::format(L"{:.{}f}", value, digits);
}

double numberIn(const std::wstring& text) {
    return std::wcstod(text.c_str(), nullptr);
}

int32_t wholeNumberIn(const std::wstring& text) {
    constexpr long lowest = INT32_MIN, highest = INT32_MAX;
    return static_cast<int32_t>(
        std::clamp(std::wcstol(text.c_str(), nullptr, 10), lowest, highest));
}

std::wstring sqlText(const std::wstring& text) {
    std::wstring quoted = L"'";
    for (const wchar_t c : text)
        quoted.append(c == L'\'' ? 2 : 1, c);
    return quoted + L"'";
}

std::wstring sqlNumber(const std::wstring& typed) {
    const std::wstring_view number = trimmed(typed);
    return number.empty() ? L"NULL" : std::wstring(number);
}

}  // namespace sg
