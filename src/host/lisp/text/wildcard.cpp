#include "host/lisp/text/wildcard.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace sg {

namespace {

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

// The C library's own tables under the "C" locale know ASCII only. These are the blocks of letters
// that drawings use, in order.
bool isLetter(wchar_t c) {
    struct Range {
        wchar_t first;
        wchar_t last;
    };
    static constexpr Range kLetters[] = {
        {0x41, 0x5A},     {0x61, 0x7A},       {0xAA, 0xAA},     {0xB5, 0xB5},     {0xBA, 0xBA},
        {0xC0, 0xD6},     {0xD8, 0xF6},       {0xF8, 0x2C1},    {0x370, 0x373},   {0x376, 0x377},
        {0x37B, 0x37D},   {0x386, 0x386},     {0x388, 0x3FF},   {0x400, 0x481},   {0x48A, 0x52F},
        {0x531, 0x556},   {0x561, 0x587},     {0x5D0, 0x5EA},   {0x620, 0x64A},   {0x671, 0x6D3},
        {0xE01, 0xE30},   {0x1E00, 0x1FBC},   {0x3041, 0x3096}, {0x30A1, 0x30FA}, {0x3400, 0x4DBF},
        {0x4E00, 0x9FFF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF}, {0xFF21, 0xFF3A}, {0xFF41, 0xFF5A},
        {0xFF66, 0xFF9F}, {0x20000, 0x2FA1F},
    };
    const auto* range = std::lower_bound(std::begin(kLetters), std::end(kLetters), c,
                                         [](const Range& r, wchar_t x) { return r.last < x; });
    return range != std::end(kLetters) && c >= range->first;
}

enum class Kind { Literal, Digit, Letter, Other, Any, AnySequence, Set, NotInSet };

struct Element {
    Kind kind;
    wchar_t literal;        // Literal
    std::wstring_view set;  // Set and NotInSet: what stands between the brackets, as written
};

// The character at `at` of a set, an escaped one taken as it is, and where the next one starts.
struct SetMember {
    wchar_t character;
    size_t next;
};

SetMember memberAt(std::wstring_view set, size_t at) {
    if (set[at] == L'`' && at + 1 < set.size()) return {set[at + 1], at + 2};
    return {set[at], at + 1};
}

bool isInSet(std::wstring_view set, wchar_t c) {
    for (size_t at = 0; at < set.size();) {
        const SetMember first = memberAt(set, at);
        SetMember last = first;
        // A hyphen at either end of the set joins nothing and stands for itself.
        if (first.next + 1 < set.size() && set[first.next] == L'-') {
            last = memberAt(set, first.next + 1);
        }
        if (c >= first.character && c <= last.character) return true;
        at = last.next;
    }
    return false;
}

bool matchesOne(const Element& element, wchar_t c) {
    switch (element.kind) {
        case Kind::Literal:
            return c == element.literal;
        case Kind::Digit:
            return isDigit(c);
        case Kind::Letter:
            return isLetter(c);
        case Kind::Other:
            return !isDigit(c) && !isLetter(c);
        case Kind::Set:
            return isInSet(element.set, c);
        case Kind::NotInSet:
            return !isInSet(element.set, c);
        case Kind::Any:
        case Kind::AnySequence:
            break;
    }
    return true;
}

// Reads a pattern's alternatives one after the other.
class AlternativeReader {
  public:
    explicit AlternativeReader(std::wstring_view pattern) : pattern_(pattern) {}

    // False when there is no further alternative.
    bool next();

    bool isNegated() const { return isNegated_; }
    const std::vector<Element>& elements() const { return elements_; }

  private:
    Element readElement();
    bool readSet(Element& element);

    std::wstring_view pattern_;
    size_t at_ = 0;  // one past the end once the last alternative is read
    bool isNegated_ = false;
    bool hasClosingBracket_ = true;  // false once a search for one has reached the end
    std::vector<Element> elements_;
};

bool AlternativeReader::next() {
    if (at_ > pattern_.size()) return false;
    elements_.clear();
    isNegated_ = at_ < pattern_.size() && pattern_[at_] == L'~';
    if (isNegated_) ++at_;
    while (at_ < pattern_.size() && pattern_[at_] != L',') {
        const Element element = readElement();
        const bool repeatsStar = element.kind == Kind::AnySequence && !elements_.empty() &&
                                 elements_.back().kind == Kind::AnySequence;
        if (!repeatsStar) elements_.push_back(element);
    }
    ++at_;
    return true;
}

Element AlternativeReader::readElement() {
    const wchar_t c = pattern_[at_];
    Element element{Kind::Literal, c, {}};
    if (c == L'[' && readSet(element)) return element;
    ++at_;
    switch (c) {
        case L'#':
            element.kind = Kind::Digit;
            break;
        case L'@':
            element.kind = Kind::Letter;
            break;
        case L'.':
            element.kind = Kind::Other;
            break;
        case L'?':
            element.kind = Kind::Any;
            break;
        case L'*':
            element.kind = Kind::AnySequence;
            break;
        case L'`':
            if (at_ < pattern_.size()) element.literal = pattern_[at_++];
            break;
        default:
            break;
    }
    return element;
}

bool AlternativeReader::readSet(Element& element) {
    if (!hasClosingBracket_) return false;
    size_t first = at_ + 1;
    const bool isNegated = first < pattern_.size() && pattern_[first] == L'~';
    if (isNegated) ++first;
    size_t end = first;
    while (end < pattern_.size() && (pattern_[end] != L']' || end == first)) {
        end += pattern_[end] == L'`' ? 2 : 1;
    }
    if (end >= pattern_.size()) {
        hasClosingBracket_ = false;
        return false;
    }
    element.kind = isNegated ? Kind::NotInSet : Kind::Set;
    element.set = pattern_.substr(first, end - first);
    at_ = end + 1;
    return true;
}

// On a mismatch only the last sequence need grow: whatever an earlier one could reach by growing,
// the last one reaches too. That keeps the time at the product of the lengths.
bool matchesAll(std::wstring_view text, const std::vector<Element>& elements) {
    constexpr size_t kNone = static_cast<size_t>(-1);
    size_t at = 0;
    size_t element = 0;
    size_t lastSequence = kNone;
    size_t sequenceEnd = 0;  // how far the last sequence reaches at present
    while (at < text.size()) {
        if (element < elements.size() && elements[element].kind == Kind::AnySequence) {
            lastSequence = element++;
            sequenceEnd = at;
        } else if (element < elements.size() && matchesOne(elements[element], text[at])) {
            ++element;
            ++at;
        } else if (lastSequence != kNone) {
            element = lastSequence + 1;
            at = ++sequenceEnd;
        } else {
            return false;
        }
    }
    while (element < elements.size() && elements[element].kind == Kind::AnySequence)
        ++element;
    return element == elements.size();
}

}  // namespace

bool wildcardMatch(std::wstring_view text, std::wstring_view pattern) {
    AlternativeReader alternatives(pattern);
    while (alternatives.next()) {
        if (matchesAll(text, alternatives.elements()) != alternatives.isNegated()) return true;
    }
    return false;
}

}  // namespace sg
