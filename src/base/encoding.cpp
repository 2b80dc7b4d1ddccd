#include "base/encoding.h"

#include <array>

namespace sg {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

// Code page 1252 differs from Latin-1 in 0x80 to 0x9F only; the five unassigned bytes map to the
// control characters of the same number, as the system of origin maps them.
constexpr std::array<wchar_t, 32> kCp1252High = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

struct Decoded {
    char32_t code;
    size_t length;  // bytes consumed; at least 1
    bool valid;
};

Decoded decodeOne(std::string_view bytes, size_t at) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) return {lead, 1, true};
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4) return {kReplacement, 1, false};
    char32_t code = lead & (0x7F >> length);
    for (size_t i = 1; i < length; ++i) {
        if (at + i >= bytes.size() || (byte(at + i) & 0xC0) != 0x80) {
            return {kReplacement, i, false};
        }
        code = code << 6 | (byte(at + i) & 0x3F);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    if (overlong || surrogate || code > 0x10FFFF) return {kReplacement, length, false};
    return {code, length, true};
}

void appendUtf8(std::string& out, char32_t code) {
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = kReplacement;
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | code >> 6);
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | code >> 12);
        out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | code >> 18);
        out += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

std::wstring fromUtf16Bytes(std::string_view bytes, bool bigEndian) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    return fromUtf16(units);
}

}  // namespace

std::wstring fromUtf8(std::string_view bytes) {
    std::wstring out;
    out.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size();) {
        const Decoded one = decodeOne(bytes, at);
        out += static_cast<wchar_t>(one.code);
        at += one.length;
    }
    return out;
}

std::string toUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (const wchar_t c : text)
        appendUtf8(out, static_cast<char32_t>(c));
    return out;
}

bool isUtf8(std::string_view bytes) {
    for (size_t at = 0; at < bytes.size();) {
        const Decoded one = decodeOne(bytes, at);
        if (!one.valid) return false;
        at += one.length;
    }
    return true;
}

std::wstring fromCp1252(std::string_view bytes) {
    std::wstring out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out += byte >= 0x80 && byte < 0xA0 ? kCp1252High[byte - 0x80] : static_cast<wchar_t>(byte);
    }
    return out;
}

std::string toCp1252(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (const wchar_t c : text) {
        char byte = '?';
        if (c < 0x80 || (c >= 0xA0 && c < 0x100)) {
            byte = static_cast<char>(c);
        } else {
            for (size_t i = 0; i < kCp1252High.size(); ++i) {
                if (kCp1252High[i] == c) byte = static_cast<char>(0x80 + i);
            }
        }
        out += byte;
    }
    return out;
}

std::wstring decodeTextFile(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) return fromUtf8(bytes.substr(3));
    if (bytes.starts_with("\xFF\xFE")) return fromUtf16Bytes(bytes.substr(2), false);
    if (bytes.starts_with("\xFE\xFF")) return fromUtf16Bytes(bytes.substr(2), true);
    return isUtf8(bytes) ? fromUtf8(bytes) : fromCp1252(bytes);
}

std::u16string toUtf16(std::wstring_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (const wchar_t c : text) {
        auto code = static_cast<char32_t>(c);
        if (code > 0x10FFFF) code = kReplacement;
        if (code < 0x10000) {
            out += static_cast<char16_t>(code);
        } else {
            out += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    return out;
}

std::wstring fromUtf16(std::u16string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            out += static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00));
        } else if (unit >= 0xD800 && unit < 0xE000) {
            out += kReplacement;
        } else {
            out += static_cast<wchar_t>(unit);
        }
    }
    return out;
}

}  // namespace sg
