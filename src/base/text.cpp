#include "base/text.h"

namespace sg {

// The C library's own tables under the "C" locale know ASCII only; Latin-1, Greek and Cyrillic are
// what names in drawings and databases use beyond it.
wchar_t toUpper(wchar_t c) {
    if (c < 0x80) return c >= L'a' && c <= L'z' ? c - 32 : c;
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
    if (c == 0xFF) return 0x178;
    if (c >= 0x100 && c <= 0x17F) {
        if (c == 0x131) return L'I';
        if (c == 0x17F) return L'S';
        if (c == 0x138 || c == 0x149 || c == 0x130) return c;
        const bool oddIsLower = !((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E));
        return ((c & 1) != 0) == oddIsLower && c != 0x178 ? c - 1 : c;
    }
    if (c >= 0x3B1 && c <= 0x3C9) return c == 0x3C2 ? 0x3A3 : c - 32;
    if (c >= 0x430 && c <= 0x44F) return c - 32;
    if (c >= 0x450 && c <= 0x45F) return c - 80;
    return c;
}

wchar_t toLower(wchar_t c) {
    if (c < 0x80) return c >= L'A' && c <= L'Z' ? c + 32 : c;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
    if (c == 0x178) return 0xFF;
    if (c >= 0x100 && c <= 0x17F) {
        if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
        const bool evenIsUpper = !((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E));
        return ((c & 1) == 0) == evenIsUpper ? c + 1 : c;
    }
    if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2) return c + 32;
    if (c >= 0x410 && c <= 0x42F) return c + 32;
    if (c >= 0x400 && c <= 0x40F) return c + 80;
    return c;
}

std::wstring upperCased(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out)
        c = toUpper(c);
    return out;
}

std::wstring lowerCased(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out)
        c = toLower(c);
    return out;
}

bool equalIgnoringCase(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (toUpper(a[i]) != toUpper(b[i])) return false;
    }
    return true;
}

bool isBlank(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r') || c == 0xA0;
}

std::wstring_view trimmedRight(std::wstring_view text) {
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::wstring_view trimmed(std::wstring_view text) {
    text = trimmedRight(text);
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

}  // namespace sg
