#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace sg {

// The function reference: Markdown files of one family each. A file's "# " heading is the family's
// title; each "### " heading holds the names of the functions that the text below it, up to the
// next heading, explains, each name in backquotes.
class SG_API FunctionPages {
  public:
    struct Section {
        std::vector<std::wstring> names;
        std::wstring text;  // without heading, pictures, and blank lines around it
    };
    struct Family {
        std::wstring file;  // the file's name without .md
        std::wstring title;
        std::vector<Section> sections;
    };
    struct Found {
        const Family* family;
        const Section* section;
    };

    // Reads the files of a folder, in the order of their names. Without any there are no families.
    static FunctionPages read(const std::wstring& folder);

    // Adds the sections of one file's text.
    void add(const std::wstring& file, std::wstring_view text);

    const std::vector<Family>& families() const { return families_; }

    // The section that explains a function, whose name may be written in any case. The combinations
    // of car and cdr are explained with cdr.
    std::optional<Found> find(std::wstring_view name) const;

    // The file, its folder in front, that has the page of a topic: a function's name, or a page's
    // own name with or without folders, an ending and "#place" around it, as help files of the
    // system of origin name theirs. Empty when there is none.
    std::wstring fileOf(std::wstring_view topic) const;

  private:
    std::wstring folder_;
    std::vector<Family> families_;
};

}  // namespace sg
