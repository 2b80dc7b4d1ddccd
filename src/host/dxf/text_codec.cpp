#include "host/dxf/text_codec.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <optional>

#include "base/encoding.h"

namespace sg::dxf {
namespace {

constexpr std::string_view kDefault = "ANSI_1252";
constexpr std::string_view kJohab = "JOHAB";

std::string upper(std::string_view text) {
    std::string made(text);
    std::transform(made.begin(), made.end(), made.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return made;
}

struct PageName {
    std::string_view drawing, library;
};
constexpr PageName kNames[] = {
    {"ANSI_932", "CP932"},  {"ANSI_936", "GBK"},  {"ANSI_949", "CP949"},      {"ANSI_950", "BIG5"},
    {"ANSI_1361", "JOHAB"}, {"DOS932", "CP932"},  {"JOHAB", "JOHAB"},         {"GB2312", "GB2312"},
    {"BIG5", "BIG5"},       {"KSC5601", "CP949"}, {"MACINTOSH", "MACINTOSH"}, {"ASCII", "CP1252"},
    {"UTF-8", "UTF-8"},     {"UTF8", "UTF-8"},
};

// The C library's name for a code page of drawings; empty for an unknown one.
std::string libraryName(std::string_view page) {
    const std::string name = upper(page);
    for (const PageName& known : kNames) {
        if (known.drawing == name) return std::string(known.library);
    }
    const auto digits = [&](size_t from) {
        return name.size() > from &&
               std::all_of(name.begin() + static_cast<ptrdiff_t>(from), name.end(),
                           [](char c) { return c >= '0' && c <= '9'; });
    };
    if (name.starts_with("ANSI_") && digits(5)) return "CP" + name.substr(5);
    if (name.starts_with("DOS") && digits(3)) return "CP" + name.substr(3);
    if (name.starts_with("ISO8859-") && digits(8)) return "ISO-8859-" + name.substr(8);
    return {};
}

// A conversion of the C library.
class Conversion {
  public:
    Conversion(const std::string& to, const std::string& from)
        : handle_(iconv_open(to.c_str(), from.c_str())) {}
    ~Conversion() {
        if (isOpen()) iconv_close(handle_);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    // One step: as much of `bytes` as can be converted, which is taken off it. Letters that marks
    // may follow come out late, at the end by asking for them.
    std::string run(std::string_view& bytes) {
        std::string made;
        char* in = const_cast<char*>(bytes.data());
        size_t left = bytes.size();
        while (left > 0) {
            char room[256];
            char* out = room;
            size_t space = sizeof(room);
            const size_t result = iconv(handle_, &in, &left, &out, &space);
            made.append(room, static_cast<size_t>(out - room));
            if (result == static_cast<size_t>(-1) && space == sizeof(room)) break;
        }
        bytes.remove_prefix(bytes.size() - left);
        char rest[16];
        char* out = rest;
        size_t space = sizeof(rest);
        iconv(handle_, nullptr, nullptr, &out, &space);
        return made.append(rest, static_cast<size_t>(out - rest));
    }

  private:
    iconv_t handle_;
};

std::wstring fromPage(const std::string& page, std::string_view bytes) {
    Conversion conversion("UTF-8", page);
    std::wstring text;
    while (conversion.isOpen() && !bytes.empty()) {
        text += fromUtf8(conversion.run(bytes));
        if (bytes.empty()) break;
        text += L'\uFFFD';
        bytes.remove_prefix(1);
    }
    // The byte of the backslash is a currency sign there, by name only.
    if (page == kJohab) std::replace(text.begin(), text.end(), L'\u20A9', L'\\');
    return text;
}

std::optional<unsigned> hexValue(std::wstring_view digits) {
    unsigned value = 0;
    for (const wchar_t c : digits) {
        unsigned digit = 0;
        if (c >= L'0' && c <= L'9') {
            digit = static_cast<unsigned>(c - L'0');
        } else if (c >= L'A' && c <= L'F') {
            digit = static_cast<unsigned>(c - L'A') + 10;
        } else if (c >= L'a' && c <= L'f') {
            digit = static_cast<unsigned>(c - L'a') + 10;
        } else {
            return std::nullopt;
        }
        value = value << 4 | digit;
    }
    return value;
}

constexpr size_t kUnicodeEscape = 7;  // \U+XXXX
constexpr size_t kPageEscape = 8;     // \M+nXXXX

// The number of units in the escape at `text`, and its character; 0 when none stands there.
size_t unicodeEscape(std::wstring_view text, wchar_t& character) {
    if (text.size() < kUnicodeEscape || text[0] != L'\\' || (text[1] != L'U' && text[1] != L'u') ||
        text[2] != L'+') {
        return 0;
    }
    const auto value = hexValue(text.substr(3, 4));
    if (!value || *value == 0) return 0;
    character = static_cast<wchar_t>(*value);
    return kUnicodeEscape;
}

size_t pageEscape(std::wstring_view text, wchar_t& character) {
    static constexpr const char* kPages[] = {"CP932", "BIG5", "CP949", "JOHAB", "GBK"};
    if (text.size() < kPageEscape || text[0] != L'\\' || (text[1] != L'M' && text[1] != L'm') ||
        text[2] != L'+' || text[3] < L'1' || text[3] > L'5') {
        return 0;
    }
    const auto value = hexValue(text.substr(4, 4));
    if (!value) return 0;
    std::string bytes;
    if (*value > 0xFF) bytes += static_cast<char>(*value >> 8);
    bytes += static_cast<char>(*value & 0xFF);
    const std::wstring made = fromPage(kPages[text[3] - L'1'], bytes);
    if (made.size() != 1 || made[0] == L'\uFFFD') return 0;
    character = made[0];
    return kPageEscape;
}

bool isHighSurrogate(wchar_t c) {
    return c >= 0xD800 && c < 0xDC00;
}
bool isLowSurrogate(wchar_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

// Appends a character that an escape stood for; two halves of one come together.
void appendEscaped(std::wstring& text, wchar_t character) {
    if (isLowSurrogate(character) && !text.empty() && isHighSurrogate(text.back())) {
        text.back() =
            static_cast<wchar_t>(0x10000 + ((text.back() - 0xD800) << 10) + (character - 0xDC00));
    } else {
        text += character;
    }
}

void resolveEscapes(std::wstring_view raw, bool hasCarets, std::wstring& text) {
    while (!raw.empty()) {
        const size_t at = std::min(raw.find_first_of(L"\\^"), raw.size());
        text += raw.substr(0, at);
        raw.remove_prefix(at);
        if (raw.empty()) break;
        wchar_t character = 0;
        const bool isCaret = hasCarets && raw[0] == L'^' && raw.size() > 1;
        if (isCaret && raw[1] == L' ') {
            text += L'^';
            raw.remove_prefix(2);
        } else if (isCaret && raw[1] > L'@' && raw[1] <= L'_') {
            text += static_cast<wchar_t>(raw[1] - L'@');
            raw.remove_prefix(2);
        } else if (const size_t unicode = unicodeEscape(raw, character)) {
            appendEscaped(text, character);
            raw.remove_prefix(unicode);
        } else if (const size_t page = pageEscape(raw, character)) {
            text += character;
            raw.remove_prefix(page);
        } else {
            text += raw[0];
            raw.remove_prefix(1);
        }
    }
    // A half that stayed alone is no character.
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return isHighSurrogate(c) || isLowSurrogate(c); },
        L'\uFFFD');
}

void appendEscape(unsigned unit, std::string& bytes) {
    bytes += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        bytes += "0123456789ABCDEF"[unit >> shift & 15];
}

}  // namespace

TextCodec::TextCodec(std::string_view codePage, bool isUtf8, bool hasCarets)
    : codePage_(isKnown(codePage) ? codePage : kDefault),
      converter_(libraryName(codePage_)),
      isUtf8_(isUtf8 || converter_ == "UTF-8"),
      hasCarets_(hasCarets) {
    if (isUtf8) return;
    size_t known = 0;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char single = static_cast<char>(byte);
        const std::wstring wide = fromPage(converter_, {&single, 1});
        const bool has = wide.size() == 1 && (byte == 0 || wide[0] != L'\uFFFD');
        toWide_[byte] = has ? wide[0] : L'\0';
        if (has) ++known;
    }
    constexpr size_t kMostGaps =
        50;  // code pages of two bytes lack characters for more bytes than that
    isSingleByte_ = known + kMostGaps > 256;
}

bool TextCodec::isKnown(std::string_view codePage) {
    const std::string name = libraryName(codePage);
    return !name.empty() && Conversion("UTF-8", name).isOpen();
}

// Without escapes and of ASCII alone.
bool TextCodec::isPlain(std::string_view bytes) const {
    return std::none_of(bytes.begin(), bytes.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 || c == '\\' || c == '^';
    });
}

std::wstring TextCodec::decodePage(std::string_view bytes) const {
    if (isUtf8_ && isUtf8(bytes)) return fromUtf8(bytes);
    if (isUtf8_ && converter_ == "UTF-8") return fromUtf8(bytes);
    if (!isSingleByte_) return fromPage(converter_, bytes);
    std::wstring text;
    for (const char c : bytes) {
        const wchar_t wide = toWide_[static_cast<unsigned char>(c)];
        text += wide != L'\0' || c == '\0' ? wide : L'\uFFFD';
    }
    return text;
}

void TextCodec::decode(std::string_view bytes, std::wstring& text) const {
    if (isPlain(bytes)) {
        text.append(bytes.begin(), bytes.end());
        return;
    }
    std::wstring resolved;
    resolveEscapes(decodePage(bytes), hasCarets_, resolved);
    text += resolved;
}

void TextCodec::encodeCharacter(wchar_t character, std::string& bytes) const {
    if (isUtf8_) {
        bytes += toUtf8({&character, 1});
        return;
    }
    if (isSingleByte_) {
        const auto found = std::find(toWide_.begin() + 0x80, toWide_.end(), character);
        if (found != toWide_.end()) {
            bytes += static_cast<char>(found - toWide_.begin());
            return;
        }
    } else {
        Conversion conversion(converter_, "UTF-8");
        const std::string utf8 = toUtf8({&character, 1});
        std::string_view rest = utf8;
        const std::string made = conversion.isOpen() ? conversion.run(rest) : std::string();
        const bool isAscii = made.size() == 1 && static_cast<unsigned char>(made[0]) < 0x80;
        if (!made.empty() && rest.empty() && !isAscii) {
            bytes += made;
            return;
        }
    }
    for (const char16_t unit : toUtf16({&character, 1}))
        appendEscape(unit, bytes);
}

void TextCodec::encode(std::wstring_view text, std::string& bytes) const {
    for (const wchar_t c : text) {
        if (c == L'^' && hasCarets_) {
            bytes += "^ ";
        } else if (c < 0x20 && hasCarets_) {
            bytes += '^';
            bytes += static_cast<char>(c + '@');
        } else if (c < 0x80) {
            bytes += static_cast<char>(c);
        } else {
            encodeCharacter(c, bytes);
        }
    }
}

}  // namespace sg::dxf
