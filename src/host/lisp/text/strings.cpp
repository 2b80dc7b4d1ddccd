#include "host/lisp/text/strings.h"

#include <algorithm>

#include "base/text.h"

namespace sg {

std::optional<size_t> stringSearch(std::wstring_view pattern, std::wstring_view text,
                                   size_t start) {
    const size_t at = text.find(pattern, start);
    if (at == std::wstring_view::npos) return std::nullopt;
    return at;
}

size_t stringMismatch(std::wstring_view a, std::wstring_view b, size_t startA, size_t startB,
                      bool ignoreCase) {
    a.remove_prefix(std::min(startA, a.size()));
    b.remove_prefix(std::min(startB, b.size()));
    const auto same = [&](wchar_t x, wchar_t y) {
        return x == y || (ignoreCase && toUpper(x) == toUpper(y));
    };
    const auto differing = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), same).first;
    return static_cast<size_t>(differing - a.begin());
}

std::wstring stringSubst(std::wstring_view replacement, std::wstring_view pattern,
                         std::wstring_view text, size_t start) {
    std::wstring result(text);
    if (const auto at = stringSearch(pattern, text, start)) {
        result.replace(*at, pattern.size(), replacement);
    }
    return result;
}

std::wstring stringTranslate(std::wstring_view source, std::wstring_view destination,
                             std::wstring_view text) {
    std::wstring result(text);
    if (destination.empty()) return result;
    for (wchar_t& c : result) {
        const size_t at = source.find(c);
        if (at != std::wstring_view::npos) c = destination[std::min(at, destination.size() - 1)];
    }
    return result;
}

std::wstring_view stringLeftTrim(std::wstring_view set, std::wstring_view text) {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

std::wstring_view stringRightTrim(std::wstring_view set, std::wstring_view text) {
    // The position before the first is npos, and one more than that is 0.
    return text.substr(0, text.find_last_not_of(set) + 1);
}

std::wstring_view stringTrim(std::wstring_view set, std::wstring_view text) {
    return stringRightTrim(set, stringLeftTrim(set, text));
}

}  // namespace sg
