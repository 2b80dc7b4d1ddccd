#include "support/mail_headers.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <vector>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr size_t kLineLength = 76;
constexpr size_t kEncodedBytes = 39;  // 52 characters in base64: a word of 64 with its frame
constexpr std::string_view kFold = "\r\n ";

bool isControl(wchar_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
}

std::wstring withoutControls(std::wstring_view text) {
    std::wstring out(text);
    std::replace_if(out.begin(), out.end(), isControl, L' ');
    return out;
}

bool isAscii(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= 0x20 && c < 0x7F; });
}

std::string base64(std::string_view bytes) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? static_cast<uint8_t>(bytes[i + k]) : 0);
        for (size_t k = 0; k < 4; ++k)
            out += k <= count ? digits[group >> (18 - 6 * k) & 63] : '=';
    }
    return out;
}

// The text's UTF-8 in pieces of at most `most` bytes, none of which ends inside a character.
std::vector<std::string> pieces(std::wstring_view text, size_t most) {
    std::vector<std::string> out(1);
    for (const wchar_t c : text) {
        const std::string bytes = toUtf8({&c, 1});
        if (out.back().size() + bytes.size() > most) out.emplace_back();
        out.back() += bytes;
    }
    return out;
}

std::string encodedWords(std::wstring_view text) {
    std::string out;
    for (const std::string& piece : pieces(text, kEncodedBytes)) {
        if (!out.empty()) out += kFold;
        out += "=?UTF-8?B?" + base64(piece) + "?=";
    }
    return out;
}

// Text that would be read as an encoded word is encoded itself. So is text that is too long for a
// line, which spares folding at blanks that would change in number.
bool isPlain(std::wstring_view text, size_t headerLength) {
    return isAscii(text) && text.find(L"=?") == std::wstring_view::npos &&
           headerLength + text.size() <= kLineLength && !text.starts_with(L' ') &&
           !text.ends_with(L' ');
}

std::string quoted(std::wstring_view text) {
    std::string out = "\"";
    for (const char c : toUtf8(text)) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

// The characters that a parameter's value has as they are; others are percent and two digits.
bool isParameterCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' ||
           c == '-' || c == '_';
}

std::string percentEncoded(std::string_view bytes) {
    std::string out;
    for (const char c : bytes)
        out += isParameterCharacter(c) ? std::string(1, c)
                                       : fmt::format("%{:02X}", static_cast<uint8_t>(c));
    return out;
}

}  // namespace

std::string mailTextHeader(std::string_view name, std::wstring_view text) {
    const std::wstring clean = withoutControls(text);
    std::string out = std::string(name) + ": ";
    if (isPlain(clean, out.size())) return out + toUtf8(clean);
    return out + encodedWords(clean);
}

std::string mailAddressHeader(std::string_view name, std::wstring_view displayName,
                              std::wstring_view address) {
    std::string out = std::string(name) + ": ";
    const std::wstring clean = withoutControls(displayName);
    const std::string mailbox = toUtf8(withoutControls(address));
    if (clean.empty()) return out + mailbox;
    out += isPlain(clean, out.size() + 2) ? quoted(clean) : encodedWords(clean);
    const bool fits = out.size() + mailbox.size() + 3 <= kLineLength;
    return out + (fits ? " " : std::string(kFold)) + '<' + mailbox + '>';
}

std::string mailDateHeader(std::chrono::system_clock::time_point time) {
    constexpr std::array<const char*, 7> days = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array<const char*, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    return fmt::format("Date: {}, {} {} {} {:02}:{:02}:{:02} +0000",
                       days[static_cast<size_t>(parts.tm_wday)], parts.tm_mday,
                       months[static_cast<size_t>(parts.tm_mon)], parts.tm_year + 1900,
                       parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::string mailAttachmentHeader(std::wstring_view fileName) {
    const std::wstring clean = withoutControls(fileName);
    std::string out = "Content-Disposition: attachment;\r\n ";
    if (isAscii(clean) && clean.size() <= 60) return out + "filename=" + quoted(clean);
    // 18 bytes are at most 54 characters here.
    const std::vector<std::string> parts = pieces(clean, 18);
    if (parts.size() == 1) return out + "filename*=UTF-8''" + percentEncoded(parts[0]);
    for (size_t i = 0; i < parts.size(); ++i) {
        out += fmt::format("{}filename*{}*={}{}", i > 0 ? ";\r\n " : "", i, i == 0 ? "UTF-8''" : "",
                           percentEncoded(parts[i]));
    }
    return out;
}

bool isMailAddress(std::wstring_view address) {
    const size_t at = address.find(L'@');
    if (at == std::wstring_view::npos || at == 0 || at + 1 == address.size()) return false;
    if (address.find(L'@', at + 1) != std::wstring_view::npos || address.size() > 320) return false;
    return std::none_of(address.begin(), address.end(), [](wchar_t c) {
        return c == L' ' || isControl(c) ||
               std::wstring_view(L"<>()[]\\,;:\"").find(c) != std::wstring_view::npos;
    });
}

}  // namespace sg
