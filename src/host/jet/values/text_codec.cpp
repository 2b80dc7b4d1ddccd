#include "host/jet/values/text_codec.h"

#include <algorithm>
#include <array>

#include "base/encoding.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// What a compressed text begins with.
constexpr uint8_t mark0 = 0xff;
constexpr uint8_t mark1 = 0xfe;
constexpr size_t markSize = 2;

constexpr size_t longestCompressed = 4096;  // bytes; longer ones are kept plain

bool hasMark(ByteView bytes) {
    return bytes.size() >= markSize && bytes.data()[0] == mark0 && bytes.data()[1] == mark1;
}

constexpr bool isSurrogate(uint16_t unit) {
    return (unit & 0xf800) == 0xd800;
}

// The whole text through the general conversion, which joins surrogates.
void decodeSurrogates(ByteView bytes, std::wstring& text) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<char16_t>(bytes.get16(2 * i));
    }
    text = fromUtf16(units);
}

void decodeWide(ByteView bytes, std::wstring& text) {
    const size_t count = bytes.size() / 2;
    text.resize(count);
    const uint8_t* from = bytes.data();
    for (size_t i = 0; i < count; ++i, from += 2) {
        const auto unit = static_cast<uint16_t>(from[0] | from[1] << 8);
        if (isSurrogate(unit)) {
            decodeSurrogates(bytes, text);
            return;
        }
        text[i] = static_cast<wchar_t>(unit);
    }
}

// `bytes` behind the mark. One byte a character at first; every zero byte where a character would
// begin switches between that and two bytes a character.
void decodeCompressed(ByteView bytes, std::wstring& text) {
    if (std::find(bytes.begin(), bytes.end(), uint8_t(0)) == bytes.end()) {
        text.assign(bytes.begin(), bytes.end());
        return;
    }
    std::u16string units;
    units.reserve(bytes.size());
    bool narrow = true;
    for (size_t i = 0; i < bytes.size();) {
        const uint8_t low = bytes.data()[i];
        if (low == 0) {
            narrow = !narrow;
            ++i;
        } else if (narrow) {
            units += static_cast<char16_t>(low);
            ++i;
        } else if (i + 1 < bytes.size()) {
            units += static_cast<char16_t>(bytes.get16(i));
            i += 2;
        } else {
            break;
        }
    }
    text = fromUtf16(units);
}

void putUtf8(std::string& text, uint16_t unit) {
    if (unit < 0x80) {
        text += static_cast<char>(unit);
        return;
    }
    if (unit < 0x800) {
        text += static_cast<char>(0xc0 | unit >> 6);
    } else {
        text += static_cast<char>(0xe0 | unit >> 12);
        text += static_cast<char>(0x80 | (unit >> 6 & 0x3f));
    }
    text += static_cast<char>(0x80 | (unit & 0x3f));
}

// False for a text with surrogates, which must be joined.
bool wideToUtf8(ByteView bytes, std::string& text) {
    text.clear();
    const uint8_t* from = bytes.data();
    for (size_t count = bytes.size() / 2; count > 0; --count, from += 2) {
        const auto unit = static_cast<uint16_t>(from[0] | from[1] << 8);
        if (isSurrogate(unit)) {
            return false;
        }
        putUtf8(text, unit);
    }
    return true;
}

// `bytes` behind the mark. False where characters of two bytes are among them.
bool compressedToUtf8(ByteView bytes, std::string& buffer, std::string_view& text) {
    uint8_t all = 0;
    bool hasZero = false;
    for (const uint8_t byte : bytes) {
        all |= byte;
        hasZero |= byte == 0;
    }
    if (hasZero) {
        return false;
    }
    text = {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    if (all >= 0x80) {
        buffer.clear();
        for (const uint8_t byte : bytes) {
            putUtf8(buffer, byte);
        }
        text = buffer;
    }
    return true;
}

uint8_t* putUnit(uint8_t* to, uint32_t unit) {
    to[0] = static_cast<uint8_t>(unit);
    to[1] = static_cast<uint8_t>(unit >> 8);
    return to + 2;
}

// The whole text through the general conversion, which takes characters apart.
void encodeSurrogates(std::wstring_view text, Bytes& bytes) {
    const std::u16string units = toUtf16(text);
    bytes.resize(2 * units.size());
    uint8_t* to = bytes.data();
    for (const char16_t unit : units) {
        to = putUnit(to, unit);
    }
}

void encodeWide(std::wstring_view text, Bytes& bytes) {
    bytes.resize(2 * text.size());
    uint8_t* to = bytes.data();
    uint32_t all = 0;
    for (const wchar_t c : text) {
        all |= static_cast<uint32_t>(c);
        to = putUnit(to, static_cast<uint32_t>(c));
    }
    if (all > 0xffff) {
        encodeSurrogates(text, bytes);
    }
}

bool allFitOneByte(std::wstring_view text) {
    uint32_t isOther = 0;
    for (const wchar_t c : text) {
        isOther |= static_cast<uint32_t>(static_cast<uint32_t>(c) - 1 > 0xfe);
    }
    return isOther == 0;
}

void encodeCompressed(std::wstring_view text, Bytes& bytes) {
    bytes.resize(markSize + text.size());
    bytes[0] = mark0;
    bytes[1] = mark1;
    uint8_t* to = bytes.data() + markSize;
    for (const wchar_t c : text) {
        *to++ = static_cast<uint8_t>(c);
    }
}

// The plain `bytes` of a text that begins with what would be taken for the mark: the other form,
// switched to two bytes a unit for the whole of it.
void encodeBehindMark(Bytes& bytes) {
    for (size_t i = 0; i < bytes.size(); i += 2) {
        if (bytes[i] == 0) {
            throw Error(ConversionError, {},
                        {.detail = L"a text that begins with U+FEFF can't have a character whose "
                                   L"UTF-16 form has a zero low byte"});
        }
    }
    const std::array<uint8_t, 3> head = {mark0, mark1, 0};
    bytes.insert(bytes.begin(), head.begin(), head.end());
}

}  // namespace

void decodeText(ByteView bytes, const Format& format, std::wstring& text) {
    if (!format.wideText) {
        text = fromCp1252({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } else if (hasMark(bytes)) {
        decodeCompressed(bytes.from(markSize), text);
    } else {
        decodeWide(bytes, text);
    }
}

std::string_view decodeTextUtf8(ByteView bytes, const Format& format, std::string& buffer) {
    if (format.wideText) {
        std::string_view text;
        if (hasMark(bytes)) {
            if (compressedToUtf8(bytes.from(markSize), buffer, text)) {
                return text;
            }
        } else if (wideToUtf8(bytes, buffer)) {
            return buffer;
        }
    }
    std::wstring wide;
    decodeText(bytes, format, wide);
    buffer = toUtf8(wide);
    return buffer;
}

void encodeText(std::wstring_view text, bool compress, Bytes& bytes) {
    const size_t compressedSize = markSize + text.size();
    if (compress && compressedSize < 2 * text.size() && compressedSize <= longestCompressed &&
        allFitOneByte(text)) {
        encodeCompressed(text, bytes);
        return;
    }
    encodeWide(text, bytes);
    if (hasMark({bytes.data(), bytes.size()})) {
        encodeBehindMark(bytes);
    }
}

std::wstring decodeName(ByteView bytes, const Format& format) {
    std::wstring name;
    if (format.wideText) {
        decodeWide(bytes, name);
    } else {
        decodeText(bytes, format, name);
    }
    return name;
}

void encodeName(std::wstring_view name, Bytes& bytes) {
    encodeWide(name, bytes);
}

}  // namespace sg::jet
