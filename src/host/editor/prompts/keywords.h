#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace sg {

// The keywords of a prompt, as a program names them in one text with blanks between them: what is
// written in capitals must be typed ("Corner", "eXit", "LType"); or the required part follows
// behind a comma ("LTYPE,LT"). Words behind one that starts with "_" are the same keywords in the
// language of programs, in the same order ("Mitte Ende _Middle End").
class SG_API Keywords {
  public:
    Keywords() = default;
    explicit Keywords(std::wstring_view text);

    bool empty() const { return all_.empty(); }
    // The keyword that `typed` stands for, in the language of programs; nullopt for none. Case does
    // not count; with "_" in front only the program's words are looked at.
    std::optional<std::wstring> find(std::wstring_view typed) const;
    // Its place among the keywords, from 0.
    std::optional<size_t> findPlace(std::wstring_view typed) const;
    size_t size() const { return all_.size(); }
    // "Corner/Middle"
    std::wstring shown() const;

  private:
    struct Word {
        std::wstring whole;
        std::wstring required;
        bool matches(std::wstring_view typed) const;
    };
    static Word wordOf(std::wstring_view text);

    std::vector<Word> all_;     // as the user types them
    std::vector<Word> global_;  // as programs have them; as many
};

}  // namespace sg
