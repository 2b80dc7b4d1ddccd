#pragma once

#include <locale.h>

#include <string>
#include <string_view>

namespace sg::app {

// Measures text in the cells of a terminal: wide characters take two, combining ones none.
class TextRuler {
  public:
    TextRuler();
    ~TextRuler();
    TextRuler(const TextRuler&) = delete;
    TextRuler& operator=(const TextRuler&) = delete;

    int width(std::wstring_view text) const;
    // `text`, or where it is wider than `most` cells, which are at least one, its begin with "…"
    // behind it.
    std::wstring cut(std::wstring_view text, int most) const;

  private:
    int width(wchar_t character) const;

    locale_t characters_;  // tells how wide they are; zero when the system has none
};

}  // namespace sg::app
