#include "host/jet/text_codec.h"

#include <algorithm>

#include "base/encoding.h"

namespace sg::jet {
namespace {

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

}  // namespace

void decodeText(ByteView bytes, const Format& format, std::wstring& text) {
    if (!format.wideText) {
        text = fromCp1252({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } else if (bytes.size() >= 2 && bytes.data()[0] == 0xff && bytes.data()[1] == 0xfe) {
        decodeCompressed(bytes.from(2), text);
    } else {
        decodeWide(bytes, text);
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

}  // namespace sg::jet
