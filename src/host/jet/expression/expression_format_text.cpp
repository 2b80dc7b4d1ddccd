// Patterns of texts.

#include <algorithm>
#include <vector>

#include "base/text.h"
#include "host/jet/expression/expression_format.h"

namespace sg::jet::detail {
namespace {

struct Element {
    enum class Kind { Literal, Blank, Nothing };  // the last two: a place, and what an empty one is
    Kind kind = Kind::Literal;
    wchar_t character = L'\0';
};

// A section taken apart.
struct Section {
    std::vector<Element> elements;
    size_t places = 0;
    bool fromLeft = false;
    wchar_t letters = L'\0';  // the "<" or ">" that changes their case

    void literals(std::wstring_view text) {
        for (const wchar_t c : text)
            elements.push_back({Element::Kind::Literal, c});
    }
    void place(Element::Kind empty) {
        elements.push_back({empty});
        ++places;
    }
};

Section sectionOf(std::wstring_view pattern) {
    Section section;
    for (size_t at = 0; at < pattern.size();) {
        const size_t end = formatElementEnd(pattern, at);
        const wchar_t c = pattern[at];
        if (c == L'@') {
            section.place(Element::Kind::Blank);
        } else if (c == L'&') {
            section.place(Element::Kind::Nothing);
        } else if (c == L'!') {
            section.fromLeft = true;
        } else if (c == L'<' || c == L'>') {
            section.letters = c;
        } else if (c == L'"') {
            const size_t close = std::min(pattern.find(L'"', at + 1), end);
            section.literals(pattern.substr(at + 1, close - at - 1));
        } else {
            section.literals(c == L'\\' ? pattern.substr(at + 1, 1) : pattern.substr(at, 1));
        }
        at = end;
    }
    return section;
}

// Places are filled from the right, or from the left where the section says so; what has no place
// stands before them, or behind.
std::wstring filled(const Section& section, const std::wstring& text) {
    const size_t taken = std::min(section.places, text.size());
    const size_t empty = section.places - taken;
    const bool isBehind = section.fromLeft && section.places > 0;
    size_t next = isBehind ? 0 : text.size() - taken;
    std::wstring result = text.substr(0, next);
    size_t place = 0;
    for (const Element& element : section.elements) {
        if (element.kind == Element::Kind::Literal) {
            result += element.character;
            continue;
        }
        const bool isEmpty = section.fromLeft ? place >= taken : place < empty;
        ++place;
        if (!isEmpty) {
            result += text[next++];
        } else if (element.kind == Element::Kind::Blank) {
            result += L' ';
        }
    }
    return result.append(text, next);
}

}  // namespace

size_t formatElementEnd(std::wstring_view pattern, size_t at) {
    if (pattern[at] == L'"') {
        return std::min(pattern.find(L'"', at + 1), pattern.size() - 1) + 1;
    }
    return std::min(at + (pattern[at] == L'\\' ? 2 : 1), pattern.size());
}

std::vector<std::wstring_view> formatSections(std::wstring_view pattern) {
    std::vector<std::wstring_view> sections;
    size_t start = 0;
    for (size_t at = 0; at < pattern.size(); at = formatElementEnd(pattern, at)) {
        if (pattern[at] == L';') {
            sections.push_back(pattern.substr(start, at - start));
            start = at + 1;
        }
    }
    sections.push_back(pattern.substr(start));
    return sections;
}

std::wstring formattedText(std::wstring_view text, std::wstring_view pattern) {
    const std::vector<std::wstring_view> sections = formatSections(pattern);
    const bool isSecond = text.empty() && sections.size() > 1;
    const Section section = sectionOf(sections[isSecond ? 1 : 0]);
    return filled(section, section.letters == L'<'   ? lowerCased(text)
                           : section.letters == L'>' ? upperCased(text)
                                                     : std::wstring(text));
}

}  // namespace sg::jet::detail
