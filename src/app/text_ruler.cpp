#include "app/text_ruler.h"

#include <cwchar>

namespace sg::app {
namespace {

// Makes a locale the thread's own for a moment; the functions that measure take no other.
class UsedLocale {
  public:
    explicit UsedLocale(locale_t locale)
        : before_(locale == locale_t() ? locale_t() : uselocale(locale)) {}
    ~UsedLocale() {
        if (before_ != locale_t()) uselocale(before_);
    }
    UsedLocale(const UsedLocale&) = delete;
    UsedLocale& operator=(const UsedLocale&) = delete;

  private:
    locale_t before_;
};

bool isPlain(wchar_t character) {
    return character >= 0x20 && character < 0x7f;
}

}  // namespace

TextRuler::TextRuler() : characters_(newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t())) {}

TextRuler::~TextRuler() {
    if (characters_ != locale_t()) freelocale(characters_);
}

int TextRuler::width(wchar_t character) const {
    if (isPlain(character)) return 1;
    const int cells = wcwidth(character);
    return cells < 0 ? 1 : cells;
}

int TextRuler::width(std::wstring_view text) const {
    const UsedLocale used(characters_);
    int cells = 0;
    for (const wchar_t character : text)
        cells += width(character);
    return cells;
}

std::wstring TextRuler::cut(std::wstring_view text, int most) const {
    const UsedLocale used(characters_);
    int cells = 0;
    size_t kept = 0;  // as many characters as leave a cell for the mark
    for (size_t i = 0; i < text.size(); ++i) {
        cells += width(text[i]);
        if (cells > most) return std::wstring(text.substr(0, kept)) + L"…";
        if (cells < most) kept = i + 1;
    }
    return std::wstring(text);
}

}  // namespace sg::app
