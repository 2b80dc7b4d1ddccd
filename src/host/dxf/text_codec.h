#pragma once

#include <array>
#include <string>
#include <string_view>

namespace sg::dxf {

// Texts between a drawing file and the drawing. Files of release 2007 and later are UTF-8, those
// before have a code page with escapes for the rest: \U+XXXX for a character, \M+nXXXX for one of
// an Asian code page. A control character is "^" and the letter 64 places above, "^" itself "^ ".
class TextCodec {
  public:
    // `codePage` as $DWGCODEPAGE names it, such as ANSI_1252; an unknown one counts as that.
    // Without carets control characters stand as they are, which is how files that are no text have
    // them.
    TextCodec(std::string_view codePage, bool isUtf8, bool hasCarets = true);

    static bool isKnown(std::string_view codePage);
    const std::string& codePage() const { return codePage_; }

    // Appends to `text`.
    void decode(std::string_view bytes, std::wstring& text) const;
    std::wstring decoded(std::string_view bytes) const {
        std::wstring text;
        decode(bytes, text);
        return text;
    }
    void encode(std::wstring_view text, std::string& bytes) const;

  private:
    bool isPlain(std::string_view bytes) const;
    std::wstring decodePage(std::string_view bytes) const;
    void encodeCharacter(wchar_t character, std::string& bytes) const;

    std::string codePage_;
    std::string converter_;  // the C library's name of the code page
    bool isUtf8_;
    bool hasCarets_;
    bool isSingleByte_ = false;
    std::array<wchar_t, 256> toWide_{};  // of a code page of single bytes; 0 where it has none
};

}  // namespace sg::dxf
