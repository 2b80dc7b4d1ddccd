#include "host/dwg/file_filer.h"

#include "base/encoding.h"

namespace sg::dwg {

std::string FileFiler::encode(const std::wstring& text) const {
    std::string bytes;
    if (!hasTextStream()) {
        codec_.encode(text, bytes);
        return bytes;
    }
    for (const char16_t unit : toUtf16(text)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

std::wstring FileFiler::decode(std::string_view bytes, uint8_t page) const {
    if (!hasTextStream()) {
        if (page == codePage()) return codec_.decoded(bytes);
        return dxf::TextCodec(codePageName(page), false, false).decoded(bytes);
    }
    std::u16string units;
    for (size_t i = 0; i + 2 <= bytes.size(); i += 2) {
        const auto low = static_cast<uint8_t>(bytes[i]);
        const auto high = static_cast<uint8_t>(bytes[i + 1]);
        units += static_cast<char16_t>(low | high << 8);
    }
    return fromUtf16(units);
}

}  // namespace sg::dwg
